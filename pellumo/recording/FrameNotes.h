/// @file
/// What a person wants to be told of a frame: its fields with their values, and what is right and wrong with it.
#pragma once

#include "pellumo/recording/BusEvent.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Pellumo {

/// A field of a frame: the samples [First, End) of the stream.
struct FrameField {
    std::int64_t First = 0;
    std::int64_t End = 0;
    std::string Name;
    std::string Value;
    bool BySlave = false;
    bool Faulty = false;
};

/// The fields of a Write, Read or Break in their order.
std::vector<FrameField> FieldsOf(const BusEvent& Event);

/// Short phrases about a frame.
struct FrameNotes {
    std::vector<std::string> Facts;
    std::vector<std::string> Faults;
};

FrameNotes NotesOn(const BusEvent& Event);

/// True when the bus had another level than the commander drove, in the middle of a bit that it drove.
bool IsDisturbed(const BusEvent& Event);

} // namespace Pellumo
