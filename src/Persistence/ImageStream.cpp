// Images to and from streams of the caller's.
#include <new>

#include "CtkHRESULTException.h"
#include "ErrorHandling.h"
#include "Image/OwningDuplicate.h"
#include "ImageStreams.h"
#include "Interface/ErrorTexts.h"
#include "Persistence/LoadedImage.h"
#include "Persistence/Tree/ObjectStream.h"

namespace {

using Persistence::NodeHolder;
using Persistence::TableScope;

/// Takes the numbers of a stored tree off again, whatever becomes of the store.
struct ClearNumbers {
    TImageObject &Tree;
    ~ClearNumbers() { Tree.ClearStreamIndex(); }
};

/// The image, or nothing where the stream holds none.
NodeHolder<TImageObject> Load(CtkStream &stream, TSList *table) {
    TableScope scope(table);
    try {
        const std::int32_t first = table == nullptr ? 0 : table->GetCount();
        return Persistence::AsLoadedImage(Persistence::ReadObject(stream, Persistence::UnknownLength, first));
    } catch (const CtkObject &) {
    } catch (const tkIO::CtkIOException &) {
    }
    // Required: after a failure the caller's table stays the process's current one.
    scope.Keep();
    return {};
}

} // namespace

bool WriteImageStream(void *image, TSList *table, CtkStream *stream) {
    TImageObject *tree = Image::TreeOf(image);
    if (tree == nullptr || stream == nullptr)
        return false;
    tree->ClearStreamIndex();
    const ClearNumbers numbers{*tree};
    const TableScope scope(table);
    Persistence::WriteObject(*stream, tree);
    return true;
}

bool LoadImageStream(CtkStream *stream, TSList *table, void **out) {
    if (stream == nullptr || out == nullptr)
        return false;
    NodeHolder<TImageObject> image = Load(*stream, table);
    if (!image)
        return false;
    *out = static_cast<pOLE::IImageVPA *>(image.Detach()->Interface());
    return true;
}

bool LoadOLDImageStream(...) {
    ReportORVErrorEx(ErrGeneral, Interface::ErrorTexts::NoLongerImplemented, "LoadOLDImageStream");
    return false;
}
