// Sampling in double under a map that keeps rows rows and columns columns: the same pixels as
// CLinearInterpolator<T, double> gives one by one. Each row of the source is weighed along the columns once, for all
// rows of the result that lie beside it.
#pragma once

#include "Transformations/Interpolator.h"
#include "Transformations/UprightColumns.h"

namespace Transformations {

/// Fills planes from the selected plane of an interpolator, which must outlive this and stay as it is.
template <class T>
class UprightSampling {
public:
    /// map leads from the result to the source and is upright. Takes one look at the table.
    UprightSampling(const CLinearInterpolator<T, double> &interpolator, const TCoordinateMap &map);

    void Fill(const Image::PlaneView &target);

private:
    /// Columns that are worked on at a time: what is kept of them fits caches.
    static constexpr std::intptr_t LongestStretch = 4096;

    /// The pixels of a row of the source under the columns, each with its weight along the row.
    struct WeighedRow {
        std::int64_t Row = -1;
        std::vector<double> Left, Right;
    };

    void FillStretch(const Image::PlaneView &target, std::intptr_t first, std::intptr_t count);
    bool SampleRow(std::intptr_t y, T *to);
    const WeighedRow &RowAt(std::int64_t row, std::int64_t keep);
    void Weigh(WeighedRow &row) const;
    void CopyOverlayBits(std::int64_t row, T *to) const;

    const CLinearInterpolator<T, double> &interpolator_;
    TCoordinateMap map_;
    Image::PlaneView source_;
    UprightColumns columns_;
    WeighedRow rows_[2];
    std::vector<T> buffer_; ///< for rows of the result that are no arrays in memory
};

/// For processors with the instructions of Image::KernelLevel::Avx512: weighs the pixels of a row. The columns have
/// windows.
template <class T>
void WeighAtAvx512(const UprightColumns &columns, const char *row, double *left, double *right);

} // namespace Transformations
