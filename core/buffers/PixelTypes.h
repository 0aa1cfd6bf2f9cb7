#pragma once

#include "SxPicBuf.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

/// Calls visit with the std::type_identity of the number type that stores the values. For packed colours and unknown
/// types, whose values are not numbers, does not call visit and returns false.
template<typename Visitor>
bool visitNumberType(ExImageDataType type, Visitor&& visit)
{
    switch (type) {
    case ExImageDataType::Int8:
        visit(std::type_identity<std::int8_t>());
        return true;
    case ExImageDataType::UInt8:
        visit(std::type_identity<std::uint8_t>());
        return true;
    case ExImageDataType::Int16:
        visit(std::type_identity<std::int16_t>());
        return true;
    case ExImageDataType::UInt16:
        visit(std::type_identity<std::uint16_t>());
        return true;
    case ExImageDataType::Int32:
        visit(std::type_identity<std::int32_t>());
        return true;
    case ExImageDataType::UInt32:
        visit(std::type_identity<std::uint32_t>());
        return true;
    case ExImageDataType::Int64:
        visit(std::type_identity<std::int64_t>());
        return true;
    case ExImageDataType::UInt64:
        visit(std::type_identity<std::uint64_t>());
        return true;
    case ExImageDataType::Float:
        visit(std::type_identity<float>());
        return true;
    case ExImageDataType::Double:
        visit(std::type_identity<double>());
        return true;
    default:
        return false;
    }
}

/// Reads the value with the given index in a row. A row may start at any address, so the pointer cannot be cast and
/// dereferenced. Compilers turn the copy into a plain load.
template<typename T>
T loadValue(const std::uint8_t* row, std::size_t index)
{
    T value;
    std::memcpy(&value, row + index * sizeof(T), sizeof(T));
    return value;
}

/// Writes the value with the given index in a row, which may start at any address.
template<typename T>
void storeValue(std::uint8_t* row, std::size_t index, T value)
{
    std::memcpy(row + index * sizeof(T), &value, sizeof(T));
}
