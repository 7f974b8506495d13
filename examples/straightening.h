// A turned board in a picture shown straight, by the affine transforms.
#pragma once

#include "scene.h"
#include "transformed.h"

/// Where the board lies: the system along its edges, and how much of it is shown.
struct BoardPlace {
    TCoordinateMap map; ///< from places on the board to places in the picture
    double halfWidth;
    double halfHeight;
};
/// In a picture of which nothing is known, a rectangle that is turned by 15 degrees about the middle.
BoardPlace PlaceOfBoard(void *picture, const Scene *scene);

/// The same pixels as an image with the coordinate system of the board: a view.
ImageHandle WithBoardSystem(void *picture, const BoardPlace &place);

/// In the system of the board, that is along its edges.
TransformedPicture StraightBySystem(void *board, const BoardPlace &place);
/// Between its corners. The x axis of the result runs along the second edge of the area.
TransformedPicture StraightByCorners(void *board, const BoardPlace &place);
/// The same area with its edges in the order of SetRectArea.
ImageHandle LyingByCorners(void *board, const BoardPlace &place);
/// The whole picture, turned back by a matrix.
TransformedPicture WholeTurnedBack(void *board, const BoardPlace &place);
/// The same without a coordinate system.
ImageHandle WholeTurnedBackWithoutSystem(void *board, const BoardPlace &place);
inline constexpr double middleEnlargement = 4.0;
/// The middle of the board, straight and so many times as large.
TransformedPicture MiddleEnlarged(void *board, const BoardPlace &place);
/// Under the map that changes nothing.
ImageHandle UnderIdentity(void *picture);
