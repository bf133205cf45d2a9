#pragma once

#include "MKPlatform/Memory.h"

#include <cstddef>
#include <string>
#include <string_view>

/// Standard allocator over the engine's heap functions.
template <typename T> struct MKSTLAllocatorClass
{
    using value_type = T;

    MKSTLAllocatorClass() noexcept = default;
    template <typename U> MKSTLAllocatorClass(const MKSTLAllocatorClass<U> &) noexcept {}

    T *allocate(std::size_t count) { return static_cast<T *>(_MK_malloc(count * sizeof(T))); }
    void deallocate(T *memory, std::size_t) noexcept { _MK_free(memory); }

    template <typename U> bool operator==(const MKSTLAllocatorClass<U> &) const noexcept { return true; }
};

namespace MK
{

/// The engine's string. UTF-8 where it is text of ours; bytes of a file are kept as they are.
using String = std::basic_string<char, std::char_traits<char>, MKSTLAllocatorClass<char>>;

/// A to Z lowered; any other byte as it is.
constexpr char Lower(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter; }

/// Compares two texts, with the letters A to Z equal to a to z.
bool Equal_Ignoring_Case(std::string_view left, std::string_view right);

/// The text with A to Z lowered; other bytes stay.
String Lowered(std::string_view text);

} // namespace MK
