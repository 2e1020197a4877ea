// The front end: from samples to mel-frequency cepstra with their dynamics.
//
// Davis and Mermelstein, "Comparison of parametric representations for monosyllabic word recognition in continuously
// spoken sentences", IEEE Transactions on ASSP 28 (1980). Furui, "Speaker-independent isolated word recognition using
// dynamic features of speech spectrum", IEEE Transactions on ASSP 34 (1986). Lee and Rose, "Speaker normalization using
// efficient frequency warping procedures", Proc. ICASSP (1996).
#pragma once

#include <vector>

#include "library.h"
#include "matrix.h"

struct FrontEndSettings {
    double frameSeconds = 0.025;
    double shiftSeconds = 0.010;
    float preEmphasis = 0.97f;
    float lowestFrequency = 100;    // Hz; the band that a telephone carries, whatever the rate of the recording
    float highestFrequency = 3400;  // Hz
    float formantScale = 1;         // stretches the mel axis for a speaker whose short vocal tract has higher formants
    int filters = 23;
    int cepstra = 12;  // beside C0
    int lifter = 22;
    float dynamicRange = 60;  // decibels from the loudest energy down to where all is silence
};

class FrontEnd {
public:
    explicit FrontEnd(double rate, const FrontEndSettings& settings = {});

    // Natural logarithms of the frames' energies, of the samples as they are.
    std::vector<float> logEnergies(const std::vector<float>& samples) const;

    // Logarithms of the mel filters' energies, one row a frame.
    Matrix melSpectrum(std::vector<float> samples) const;

    // Cepstra 1, 2, ... and last C0, one row a frame.
    Matrix cepstra(const Matrix& melSpectrum) const;

private:
    int frameCount(std::size_t sampleCount) const;

    FrontEndSettings settings_;
    int frameLength_;
    int shift_;
    int transformOrder_ = 0;
    std::vector<float> window_;
    FilterBank bank_;
    CosineTransform transform_;
};

// The features, six frames or more, with their first and second differences beside them.
Matrix withDynamics(const Matrix& features);
