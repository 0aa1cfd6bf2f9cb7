#pragma once

#include "HostGlobal.h"

#include <QtCore/QString>

#include <cstdint>

/// A value that remembers its type: what camera parameters hold and what is exchanged with them.
///
/// A copyable value that owns everything it holds. It holds exactly one of its types; the others are reached by the
/// conversions, which never fail.
class VANTREL_HOST_EXPORT CxValue
{
public:
    enum ExType : std::int32_t {
        Empty = 0, ///< holds nothing; converts to 0, false and the empty text
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

    /// The nearest integer; halves go away from zero, values beyond 32 bits become the nearest limit. A text is read as
    /// a number, with blanks around it allowed; one that is no number, and not-a-number itself, give 0.
    std::int32_t toInt() const;

    /// The value in single precision; texts as for toInt(), but for the rounding.
    float toFloat() const;

    /// True for numbers other than 0 (not-a-number counts as 0), and for the texts "true", "yes" and "on" in any letter
    /// case.
    bool toBool() const;

    /// Numbers with the fewest digits that read back the same, truth values as "true" and "false".
    QString toString() const;

    /// The same value as another type; the empty type gives an empty value.
    CxValue converted(ExType type) const;

    /// Equal type and equal value. Not-a-number equals nothing.
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
