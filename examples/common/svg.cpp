#include "svg.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <stdexcept>

namespace {

std::string escaped(std::string_view words)
{
    std::string result;
    for (const char c : words) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

}  // namespace

Svg::Svg(double width, double height) : width_(width), height_(height)
{
    body_ << std::fixed << std::setprecision(2);
}

void Svg::fill(const Box& box, std::string_view colour)
{
    body_ << "<rect x='" << box.left << "' y='" << box.top << "' width='" << box.width << "' height='" << box.height
          << "' fill='" << colour << "' shape-rendering='crispEdges'/>\n";
}

void Svg::frame(const Box& box, std::string_view colour)
{
    body_ << "<rect x='" << box.left << "' y='" << box.top << "' width='" << box.width << "' height='" << box.height
          << "' fill='none' stroke='" << colour << "'/>\n";
}

void Svg::line(const std::vector<Point>& points, std::string_view colour, double strokeWidth)
{
    body_ << "<polyline fill='none' stroke='" << colour << "' stroke-width='" << strokeWidth << "' points='";
    for (const Point& point : points)
        body_ << point.x << ',' << point.y << ' ';
    body_ << "'/>\n";
}

void Svg::text(Point at, std::string_view words, std::string_view anchor, int size)
{
    body_ << "<text x='" << at.x << "' y='" << at.y << "' text-anchor='" << anchor << "' font-size='" << size << "'>"
          << escaped(words) << "</text>\n";
}

void Svg::write(const std::string& file) const
{
    std::ofstream out(file);
    out << "<svg xmlns='http://www.w3.org/2000/svg' width='" << width_ << "' height='" << height_
        << "' font-family='sans-serif' fill='#222'>\n"
        << "<rect width='100%' height='100%' fill='white'/>\n"
        << body_.str() << "</svg>\n";
    if (!out.flush())
        throw std::runtime_error(file + ": cannot be written");
}

std::string heatColour(double value)
{
    // Stops of the viridis scale of Smith and van der Walt (2015).
    constexpr std::array<std::array<double, 3>, 6> stops = {
        {{68, 1, 84}, {65, 68, 135}, {42, 120, 142}, {34, 168, 132}, {122, 209, 81}, {253, 231, 37}}};
    const double place = std::clamp(value, 0.0, 1.0) * (stops.size() - 1);
    const std::size_t stop = std::min(static_cast<std::size_t>(place), stops.size() - 2);
    const double share = place - static_cast<double>(stop);
    std::array<int, 3> colour{};
    for (int c = 0; c < 3; ++c)
        colour[c] = static_cast<int>(std::lround(stops[stop][c] + share * (stops[stop + 1][c] - stops[stop][c])));
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", colour[0], colour[1], colour[2]);
    return text;
}
