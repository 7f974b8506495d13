// The nodes below the root of a tree image: planes, what stands for their pixels, and a bitmap's description.
#pragma once

#include "Interface/ImageGuard.h"
#include "Persistence/Tree/TBuffer.h"

/// One plane: its own block is the table, its first child the data node.
class TImagePlane : public TBuffer {
public:
    static constexpr unsigned ClassId = 4;
    static constexpr std::uint32_t PlaneTag = 33;

    TImagePlane() : TBuffer(PlaneTag) { AddClass(ClassId); }

    std::uint32_t GetClassId() const override { return WhileValid(ClassId); }

    /// Entry 0 of the table.
    VPAEntry *Table();
    /// The data node's address, asked at every access; null without a data node.
    void *PixelBase() const;

    /// The table stands in a stream with entries of 32 bits, whatever is above them cut off; behind it stands the
    /// data type. A loaded plane keeps such a table until WidenTable.
    void Load(CtkStream &stream) override;
    void Store(CtkStream &stream) override;
    /// Copies the bytes of a plane, its data type, and the data node.
    void Replicate(TSList &source) override;
    /// Makes the entries of a loaded table full words, signs kept; once, however often it is called.
    void WidenTable();

    TDataType Datatype = 0;

private:
    bool isNarrow_ = false;
};

/// The description of a bitmap: header and, for 8 bits, a palette block.
class TDIBInfo : public TBuffer {
public:
    static constexpr unsigned ClassId = 9;
    static constexpr std::uint32_t InfoTag = 32;

    /// What SetPaletteMode writes behind the header.
    enum PaletteMode : std::int32_t { ColorTable = 0, IndexTable = 1 };

    TDIBInfo() : TBuffer(InfoTag) { AddClass(ClassId); }

    std::uint32_t GetClassId() const override { return WhileValid(ClassId); }

    /// Allocates the block and writes the header of an uncompressed bitmap. height is positive for bottom-up.
    void WriteHeader(std::int32_t width, std::int32_t height, std::uint16_t bitCount);
    TBitmapInfoHeader Header();
    /// Writes the palette of an 8-bit bitmap when the mode changes. i & overlayMask tells overlay values of i apart.
    void SetPaletteMode(std::int32_t mode, std::uint32_t overlayMask);
    std::int32_t GetPaletteMode() const { return paletteMode_; }

    /// A buffer's body, then the palette mode in 4 bytes.
    void Load(CtkStream &stream) override;
    void Store(CtkStream &stream) override;
    void Replicate(TSList &source) override;

private:
    std::int32_t paletteMode_ = -1;
};

/// A data node that points into a plane of another image and keeps that image alive.
class TImageDataExt : public TDataPointer {
public:
    static constexpr unsigned ClassId = 11;
    static constexpr std::uint32_t DataTag = 34;

    /// Throws CtkExceptionObject "ImageVPA-Interface not supported" when source answers a query with a good status
    /// and no interface; without a good status the node has no source.
    TImageDataExt(void *source, std::intptr_t plane);

    std::uint32_t GetClassId() const override { return WhileValid(ClassId); }
    /// The source plane's present base address; null without a source.
    void *GetData() override;

private:
    Interface::ImageHolder source_;
    std::intptr_t plane_;
};
