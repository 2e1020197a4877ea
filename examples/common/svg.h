// A picture in Scalable Vector Graphics. Coordinates are in pixels, y down.
#pragma once

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

struct Point {
    double x;
    double y;
};

struct Box {
    double left;
    double top;
    double width;
    double height;

    double right() const { return left + width; }
    double bottom() const { return top + height; }
};

class Svg {
public:
    Svg(double width, double height);

    void fill(const Box& box, std::string_view colour);
    void frame(const Box& box, std::string_view colour);
    void line(const std::vector<Point>& points, std::string_view colour, double strokeWidth);
    // anchor is "start", "middle" or "end": which end of the text stands at the point.
    void text(Point at, std::string_view words, std::string_view anchor = "start", int size = 12);

    void write(const std::string& file) const;

private:
    double width_;
    double height_;
    std::ostringstream body_;
};

// A colour for a value from 0 (dark) to 1 (bright), in even steps to the eye.
std::string heatColour(double value);
