// What the recogniser prints.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <vector>

#include "recogniser.h"

void reportTraining(std::ostream& out, std::size_t voices, std::size_t examples, double seconds);

// A table of the answers, the accuracy over the recordings whose names tell the word, and the computing time.
void reportHearing(std::ostream& out, const std::vector<Recording>& recordings, const Hearing& hearing,
                   double computingSeconds);

// How the answers in 16 bits differ from those in floating point.
void reportCost(std::ostream& out, const std::vector<Recording>& recordings, const Hearing& floating,
                const Hearing& fixed);
