// Reading of recordings.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

struct Recording {
    std::string file;
    std::vector<float> samples;  // in the range of 16-bit integers
    int rate = 0;                // samples a second

    double seconds() const { return static_cast<double>(samples.size()) / rate; }
};

// What is wrong with a file, in one line that begins with its name.
struct BadRecording : std::runtime_error {
    BadRecording(const std::string& file, const std::string& fault) : std::runtime_error(file + ": " + fault) {}
};

// Reads one channel of speech, a tenth of a second or more, at one of the usual rates from 8000 to 48000 Hz. Throws
// BadRecording.
Recording readWav(const std::string& file);
