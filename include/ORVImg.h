/* The whole exported interface of libORVImg in one include. */
#ifndef ORV_IMG_H
#define ORV_IMG_H

#include "ORVTypes.h"

#include "AreaOperations.h"
#include "ColorTransforms.h"
#include "Drawing.h"
#include "ErrorHandling.h"
#include "ImageCoordinates.h"
#include "ImageCopies.h"
#include "ImageCreation.h"
#include "ImageFiles.h"
#include "ImageMaps.h"
#include "ImageQueries.h"
#include "ImageScan.h"
#include "ImageStatistics.h"
#include "ImageStreams.h"
#include "ImageTransformations.h"
#include "ImageViews.h"
#include "InterfaceHandling.h"
#include "Interfaces.h"
#include "Matrices.h"
#include "ObjectStreams.h"
#include "Overlays.h"
#include "PixelList/Pixel.h"
#include "PolarTransformations.h"
#include "RectangleCopy.h"
#include "ValueMapping.h"

#endif
