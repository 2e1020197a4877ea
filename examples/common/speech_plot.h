// A picture of speech: panels one below the other over the same time axis.
#pragma once

#include <string>
#include <vector>

#include "frontend.h"
#include "matrix.h"
#include "svg.h"
#include "wav.h"

// Where a panel lies: all have the same left and right edge.
struct PanelPlace {
    double top;
    double height;

    constexpr double bottom() const { return top + height; }
};

class SpeechPlot {
public:
    static constexpr const char* ink = "#20639b";
    static constexpr const char* axis = "#666666";

    SpeechPlot(const Recording& recording, const FrontEndSettings& settings, double pictureHeight);

    void title(const std::string& words);
    void waveform(PanelPlace place);

    // A row of colours for each column of the matrix, the first at the bottom: from the lowest value to the highest of
    // the whole matrix, or of each column by itself.
    enum class Range { whole, eachColumn };
    void heatMap(const Matrix& frames, PanelPlace place, Range range);

    void frame(PanelPlace place);
    void label(double y, const std::string& words);
    void line(const std::vector<Point>& points, const char* colour, double strokeWidth);
    void timeAxis(double y);

    // A frame stands for the shift's length around its middle.
    double frameToX(int frame) const;

    void write(const std::string& file) const { svg_.write(file); }

private:
    double timeToX(double seconds) const;
    Box boxOf(PanelPlace place) const;

    const Recording& recording_;
    FrontEndSettings settings_;
    Svg svg_;
};
