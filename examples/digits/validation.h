// Validation: how well speakers are recognised whom the models have not heard. Decisions on the recogniser are made by
// this, so that recordings of human voices stay unseen.
#pragma once

#include <iosfwd>
#include <vector>

#include "corpus.h"

// Leaves out each speaker in turn, trains on all others and recognises the one left out, in floating point or in 16
// bits. Prints a line per speaker.
void validate(const std::vector<Voice>& voices, bool fixed, std::ostream& out);
