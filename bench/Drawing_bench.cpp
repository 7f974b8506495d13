// Lines, circles and ellipses beside line, circle and ellipse, without anti-aliasing, on the same plane.
#include "Peers.h"
#include <opencv2/imgproc.hpp>

namespace Bench {

namespace {

constexpr double Value = 1;
constexpr int Filled = -1;

Body Repeat(std::function<void()> draw) {
    return [draw](benchmark::State &state) {
        for (auto _ : state) {
            draw();
            benchmark::ClobberMemory();
        }
    };
}

/// A plane on both sides; drawing changes it.
struct Plane {
    std::string Form;
    cv::Mat Pixels;
    ImageHandle Ours;

    Plane(const std::string &form, int type) : Form(form), Pixels(RandomPixels(type)), Ours(External(Pixels)) {}

    /// ours gives a status.
    void Register(const std::string &what, double goal, std::function<int32_t(void *)> ours,
                  std::function<void(cv::Mat &)> theirs) const {
        Require(ours(Ours.get()) == 0, "drawing: " + what);
        RegisterPair(what + ", " + Form, goal, Repeat([ours, image = Ours] { ours(image.get()); }),
                     Repeat([theirs, pixels = Pixels]() mutable { theirs(pixels); }));
    }
};

struct Line {
    const char *Name;
    cv::Point From, To;

    /// What a call costs beside the pixels stands out in a short line.
    double Goal(int thickness) const { return thickness == 1 && cv::norm(To - From) > 100 ? 0.6 : 1.0; }
};
const Line Lines[] = {
    {"across", {10, 500}, {1900, 500}},   {"down", {900, 10}, {900, 1070}},
    {"diagonal", {10, 10}, {1070, 1070}}, {"flat", {10, 500}, {1900, 560}},
    {"steep", {700, 1070}, {500, 10}},    {"from corner to corner", {10, 10}, {1900, 1070}},
    {"short", {10, 10}, {40, 25}},
};

void RegisterLines(const Plane &plane) {
    for (const Line &line : Lines)
        for (int thickness : {1, 3, 15})
            plane.Register(
                "DrawLineInImage " + std::to_string(thickness) + " " + line.Name + " / line", line.Goal(thickness),
                [=](void *image) {
                    return DrawLineInImage(image, 0, line.From.x, line.From.y, line.To.x, line.To.y, thickness, 0, 0,
                                           Value);
                },
                [=](cv::Mat &pixels) { cv::line(pixels, line.From, line.To, Value, thickness, cv::LINE_8); });
}

void RegisterCircles(const Plane &plane) {
    const cv::Point centre(Width / 2, Height / 2);
    for (int radius : {5, 50, 500}) {
        const std::string size = " of radius " + std::to_string(radius);
        for (int thickness : {1, 3, 9})
            plane.Register(
                "DrawCircleInImage " + std::to_string(thickness) + size + " / circle", 1.0,
                [=](void *image) {
                    return DrawCircleInImage(image, 0, centre.x, centre.y, radius, thickness, 0, 0, Value);
                },
                [=](cv::Mat &pixels) { cv::circle(pixels, centre, radius, Value, thickness, cv::LINE_8); });
        plane.Register(
            "FillCircleInImage" + size + " / circle", 1.0,
            [=](void *image) { return FillCircleInImage(image, 0, centre.x, centre.y, radius, 0, 0, Value); },
            [=](cv::Mat &pixels) { cv::circle(pixels, centre, radius, Value, Filled, cv::LINE_8); });
    }
}

/// Each drawing has another size: what the first one of a size costs.
void RegisterChangingCircles(const Plane &plane) {
    const auto next = [radius = std::make_shared<int>(0)] { return 40 + (*radius = (*radius + 1) % 21); };
    const cv::Point centre(Width / 2, Height / 2);
    plane.Register(
        "DrawCircleInImage 1 of radii 40 to 60 / circle", 1.0,
        [=](void *image) { return DrawCircleInImage(image, 0, centre.x, centre.y, next(), 1, 0, 0, Value); },
        [=](cv::Mat &pixels) { cv::circle(pixels, centre, next(), Value, 1, cv::LINE_8); });
    plane.Register(
        "FillCircleInImage of radii 40 to 60 / circle", 1.0,
        [=](void *image) { return FillCircleInImage(image, 0, centre.x, centre.y, next(), 0, 0, Value); },
        [=](cv::Mat &pixels) { cv::circle(pixels, centre, next(), Value, Filled, cv::LINE_8); });
}

void RegisterEllipses(const Plane &plane) {
    constexpr double degrees = 30, radians = degrees * CV_PI / 180;
    const cv::Point centre(Width / 2, Height / 2);
    for (int radius : {5, 50, 500}) {
        const cv::Size axes(radius, radius * 2 / 3);
        const std::string size = " of radius " + std::to_string(radius);
        for (int thickness : {1, 3})
            plane.Register(
                "DrawEllipseInImage " + std::to_string(thickness) + size + " / ellipse", 1.0,
                [=](void *image) {
                    return DrawEllipseInImage(image, 0, centre.x, centre.y, axes.width, axes.height, thickness, 0, 0,
                                              radians, Value);
                },
                [=](cv::Mat &pixels) {
                    cv::ellipse(pixels, centre, axes, degrees, 0, 360, Value, thickness, cv::LINE_8);
                });
        plane.Register(
            "FillEllipseInImage" + size + " / ellipse", 1.0,
            [=](void *image) {
                return FillEllipseInImage(image, 0, centre.x, centre.y, axes.width, axes.height, 0, 0, radians,
                                          Value);
            },
            [=](cv::Mat &pixels) { cv::ellipse(pixels, centre, axes, degrees, 0, 360, Value, Filled, cv::LINE_8); });
    }
}

} // namespace

void RegisterDrawing() {
    for (const Plane &plane : {Plane("8 bits", CV_8UC1), Plane("float", CV_32FC1)}) {
        RegisterLines(plane);
        RegisterCircles(plane);
        RegisterChangingCircles(plane);
        RegisterEllipses(plane);
    }
}

} // namespace Bench
