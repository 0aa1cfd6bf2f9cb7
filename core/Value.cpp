#include "CxValue.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

std::int32_t nearestInt(double value)
{
    if (std::isnan(value))
        return 0;
    const double rounded = std::round(value);
    if (rounded <= double(std::numeric_limits<std::int32_t>::min()))
        return std::numeric_limits<std::int32_t>::min();
    if (rounded >= double(std::numeric_limits<std::int32_t>::max()))
        return std::numeric_limits<std::int32_t>::max();
    return std::int32_t(rounded);
}

double numberInText(const QString& text)
{
    bool isNumber = false;
    const double value = text.trimmed().toDouble(&isNumber);
    return isNumber && !std::isnan(value) ? value : 0.0;
}

QString shortestText(float value)
{
    // An exponent only where a plain number would be mostly zeros.
    const float magnitude = std::fabs(value);
    const bool plain = magnitude == 0.0F || (magnitude >= 1e-4F && magnitude < 1e9F);
    std::array<char, 64> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   plain ? std::chars_format::fixed : std::chars_format::scientific);
    return QString::fromLatin1(digits.data(), end.ptr - digits.data());
}

} // namespace

CxValue CxValue::fromInt(std::int32_t value)
{
    CxValue result;
    result.m_type = Integer;
    result.m_int = value;
    return result;
}

CxValue CxValue::fromFloat(float value)
{
    CxValue result;
    result.m_type = Floating;
    result.m_float = value;
    return result;
}

CxValue CxValue::fromBool(bool value)
{
    CxValue result;
    result.m_type = Boolean;
    result.m_bool = value;
    return result;
}

CxValue CxValue::fromString(const QString& value)
{
    CxValue result;
    result.m_type = String;
    result.m_string = value;
    return result;
}

std::int32_t CxValue::toInt() const
{
    switch (m_type) {
    case Integer:
        return m_int;
    case Floating:
        return nearestInt(double(m_float));
    case Boolean:
        return m_bool ? 1 : 0;
    case String:
        return nearestInt(numberInText(m_string));
    case Empty:
        break;
    }
    return 0;
}

float CxValue::toFloat() const
{
    switch (m_type) {
    case Integer:
        return float(m_int);
    case Floating:
        return m_float;
    case Boolean:
        return m_bool ? 1.0F : 0.0F;
    case String: {
        // Converting a double beyond the range of float is undefined behaviour.
        const double value = numberInText(m_string);
        constexpr double limit = double(std::numeric_limits<float>::max());
        if (std::fabs(value) > limit)
            return std::copysign(std::numeric_limits<float>::infinity(), value > 0 ? 1.0F : -1.0F);
        return float(value);
    }
    case Empty:
        break;
    }
    return 0.0F;
}

bool CxValue::toBool() const
{
    switch (m_type) {
    case Integer:
        return m_int != 0;
    case Floating:
        return !std::isnan(m_float) && m_float != 0.0F;
    case Boolean:
        return m_bool;
    case String: {
        const QString word = m_string.trimmed().toLower();
        return word == u"true" || word == u"yes" || word == u"on" || numberInText(word) != 0.0;
    }
    case Empty:
        break;
    }
    return false;
}

QString CxValue::toString() const
{
    switch (m_type) {
    case Integer:
        return QString::number(m_int);
    case Floating:
        return shortestText(m_float);
    case Boolean:
        return m_bool ? QStringLiteral("true") : QStringLiteral("false");
    case String:
        return m_string;
    case Empty:
        break;
    }
    return QString();
}

CxValue CxValue::converted(ExType type) const
{
    switch (type) {
    case Integer:
        return fromInt(toInt());
    case Floating:
        return fromFloat(toFloat());
    case Boolean:
        return fromBool(toBool());
    case String:
        return fromString(toString());
    case Empty:
        break;
    }
    return CxValue();
}

bool operator==(const CxValue& a, const CxValue& b)
{
    if (a.m_type != b.m_type)
        return false;
    switch (a.m_type) {
    case CxValue::Integer:
        return a.m_int == b.m_int;
    case CxValue::Floating:
        return a.m_float == b.m_float;
    case CxValue::Boolean:
        return a.m_bool == b.m_bool;
    case CxValue::String:
        return a.m_string == b.m_string;
    case CxValue::Empty:
        break;
    }
    return true;
}
