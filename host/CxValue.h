#pragma once

#include "HostGlobal.h"

#include <QtCore/QString>

#include <cstdint>

/// The value of a camera parameter, with its type.
///
/// Copyable, and owns everything it holds. It holds one type at a time; the conversions to the others never fail.
class VANTREL_HOST_EXPORT CxValue
{
public:
    enum ExType : std::int32_t {
        Empty = 0, ///< no value; converts to 0, false and the empty text
        Integer = 1,
        Floating = 2,
        Boolean = 3,
        String = 4,
    };

    /// An empty value.
    CxValue() = default;

    static CxValue fromInt(std::int32_t value);
    static CxValue fromFloat(float value);
    static CxValue fromBool(bool value);
    static CxValue fromString(const QString& value);

    ExType type() const { return m_type; }
    bool isEmpty() const { return m_type == Empty; }

    /// The nearest integer, with halves rounded away from zero and values beyond 32 bits clipped. A text is read as a
    /// number, and blanks around the number are ignored. NaN and a text without a number give 0.
    std::int32_t toInt() const;

    /// The value in single precision. Reads a text as toInt() does, but does not round it; beyond the range of float
    /// it gives infinity.
    float toFloat() const;

    /// True for numbers other than 0 and NaN, for texts of such numbers, and for the texts "true", "yes" and "on" in
    /// any letter case.
    bool toBool() const;

    /// The value as text: numbers with the fewest digits that read back the same, and truth values as "true" and
    /// "false".
    QString toString() const;

    /// The value converted to another type. Empty gives an empty value.
    CxValue converted(ExType type) const;

    /// True if type and value are equal. NaN equals nothing.
    friend VANTREL_HOST_EXPORT bool operator==(const CxValue& a, const CxValue& b);

private:
    ExType m_type = Empty;
    union {
        std::int32_t m_int = 0;
        float m_float;
    };
    bool m_bool = false;
    QString m_string;
};
