// One call of the library each, and the map that it should have gone by.
#include "straightening.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double shownHalfWidth = 340.0;
constexpr double spareGround = 10.0;
constexpr double unknownAngle = 15.0; // degrees

TArea AreaOf(const BoardPlace &place) {
    TArea area{};
    SetRectArea(&area, -place.halfWidth, -place.halfHeight, place.halfWidth, place.halfHeight);
    return area;
}

TMatrix TurnedBack(const BoardPlace &place, double scale) {
    TMatrix back{}, scaled{};
    RotationMatrix(&back, -Argument(place.map.Matrix.A11, place.map.Matrix.A21));
    SetMatrix(&scaled, scale, 0.0, 0.0, scale);
    MultiplyMatrices(&back, scaled, back);
    return back;
}

/// From pixels of the result to pixels of the source, by their coordinate systems: a coordinate names the same point
/// of the scene in both.
TCoordinateMap BySystems(void *result, void *source) {
    TCoordinateMap resultMap{}, sourceMap{}, fromPixel{}, toSource{};
    Require(GetImageCoordinates(result, &resultMap) && GetImageCoordinates(source, &sourceMap) &&
                InverseCoordinateMap(&fromPixel, resultMap),
            "the coordinate system of a result");
    ComposeCoordinateMaps(&toSource, fromPixel, sourceMap);
    return toSource;
}

TransformedPicture WithSystems(const char *name, const char *fileEnding, ImageHandle image, void *source) {
    TransformedPicture picture = UnderMap(name, fileEnding, BySystems(image.Get(), source));
    picture.image = std::move(image);
    return picture;
}

/// The map of CreateAreaSubImage. Each edge is taken one pixel longer than it is, to the right and down.
TCoordinateMap MapOfArea(void *board, const TArea &area) {
    TArea pixels{};
    ImageAreaToPixel(board, &pixels, area);
    const double columns = std::hypot(area.X2 - area.X0, area.Y2 - area.Y0) + 1.0;
    const double rows = std::hypot(area.X1 - area.X0, area.Y1 - area.Y0) + 1.0;
    TCoordinateMap map = {pixels.X0, pixels.Y0, {}};
    SetMatrix(&map.Matrix, (pixels.X2 - pixels.X0 + 1.0) / columns, (pixels.X1 - pixels.X0 + 1.0) / rows,
              (pixels.Y2 - pixels.Y0 + 1.0) / columns, (pixels.Y1 - pixels.Y0 + 1.0) / rows);
    return map;
}

} // namespace

BoardPlace PlaceOfBoard(void *picture, const Scene *scene) {
    BoardPlace place{};
    if (scene != nullptr) {
        place = {{scene->middle.x, scene->middle.y, {}}, shownHalfWidth, scene->halfHeight + spareGround};
        RotationMatrix(&place.map.Matrix, scene->angleDegrees);
        return place;
    }
    const double right = static_cast<double>(ImageWidth(picture) - 1) / 2.0;
    const double bottom = static_cast<double>(ImageHeight(picture) - 1) / 2.0;
    const double cosine = std::cos(unknownAngle * std::numbers::pi / 180.0);
    const double sine = std::sin(unknownAngle * std::numbers::pi / 180.0);
    const double fitting = std::min(right / (cosine + 0.75 * sine), bottom / (sine + 0.75 * cosine));
    const double halfWidth = std::max(std::floor(fitting), 0.5);
    place = {{right, bottom, {}}, halfWidth, 0.75 * halfWidth};
    RotationMatrix(&place.map.Matrix, unknownAngle);
    return place;
}

ImageHandle WithBoardSystem(void *picture, const BoardPlace &place) {
    ImageHandle board;
    Require(CreateImageSubList(picture, 0, ImageDimension(picture), 1, board.Out()) != 0, "CreateImageSubList");
    Require(SetImageCoordinates(board.Get(), place.map), "SetImageCoordinates");
    return board;
}

TransformedPicture StraightBySystem(void *board, const BoardPlace &place) {
    ImageHandle straight;
    Require(CreateSubImage(board, straight.Out(), AreaOf(place)), "CreateSubImage");
    return WithSystems("CreateSubImage", "straight", std::move(straight), board);
}

TransformedPicture StraightByCorners(void *board, const BoardPlace &place) {
    TArea area = AreaOf(place);
    std::swap(area.X1, area.X2);
    std::swap(area.Y1, area.Y2);
    TransformedPicture picture = UnderMap("CreateAreaSubImage", "straight_area", MapOfArea(board, area));
    Require(CreateAreaSubImage(board, picture.image.Out(), area), "CreateAreaSubImage");
    return picture;
}

ImageHandle LyingByCorners(void *board, const BoardPlace &place) {
    ImageHandle lying;
    Require(CreateAreaSubImage(board, lying.Out(), AreaOf(place)), "CreateAreaSubImage");
    return lying;
}

TransformedPicture WholeTurnedBack(void *board, const BoardPlace &place) {
    ImageHandle turned;
    Require(CreateMatrixTransformedImage(board, turned.Out(), TurnedBack(place, 1.0)),
            "CreateMatrixTransformedImage");
    return WithSystems("CreateMatrixTransformedImage", "turned_back", std::move(turned), board);
}

ImageHandle WholeTurnedBackWithoutSystem(void *board, const BoardPlace &place) {
    ImageHandle turned;
    Require(CreateMatrixTransformedImageEx(board, turned.Out(), TurnedBack(place, 1.0)),
            "CreateMatrixTransformedImageEx");
    return turned;
}

TransformedPicture MiddleEnlarged(void *board, const BoardPlace &place) {
    const TCoordinateMap map = {0.0, 0.0, TurnedBack(place, middleEnlargement)};
    const double reach = std::min(place.halfHeight, 40.0);
    TArea middle{};
    SetRectArea(&middle, -reach, -reach, reach, reach);
    ImageHandle enlarged;
    Require(CreateAreaAffineTransformedImage(board, &map, &middle, enlarged.Out()),
            "CreateAreaAffineTransformedImage");
    return WithSystems("CreateAreaAffineTransformedImage", "enlarged", std::move(enlarged), board);
}

ImageHandle UnderIdentity(void *picture) {
    TCoordinateMap identity{};
    InitCoordinateMap(&identity);
    ImageHandle same;
    Require(CreateAffineTransformedImage(picture, &identity, same.Out()), "CreateAffineTransformedImage");
    return same;
}
