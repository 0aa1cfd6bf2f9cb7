#include "CameraSettingsFile.h"

#include "CameraParamNames.h"
#include "storage/FileReading.h"
#include "storage/FileReplacement.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLoggingCategory>

#include <cmath>
#include <limits>

namespace {

const QString formatName = QStringLiteral("vantrel camera settings");
constexpr int formatVersion = 1;
constexpr qint64 largestFile = 1 << 20;

QJsonValue toJson(const CxValue& value)
{
    switch (value.type()) {
    case CxValue::Integer:
        return value.toInt();
    case CxValue::Floating:
        // Through text, so that 0.1 is saved as 0.1 and not with all the digits of its single-precision value.
        return value.toString().toDouble();
    case CxValue::Boolean:
        return value.toBool();
    case CxValue::String:
        return value.toString();
    case CxValue::Empty:
        break;
    }
    return QJsonValue::Null;
}

/// The value, or an empty one for JSON that no parameter can hold.
CxValue fromJson(const QJsonValue& json)
{
    if (json.isBool())
        return CxValue::fromBool(json.toBool());
    if (json.isString())
        return CxValue::fromString(json.toString());
    if (!json.isDouble())
        return CxValue();
    const double number = json.toDouble();
    if (number == std::floor(number) && std::fabs(number) <= double(std::numeric_limits<std::int32_t>::max()))
        return CxValue::fromInt(std::int32_t(number));
    return CxValue::fromString(QString::number(number, 'g', 17)).converted(CxValue::Floating);
}

/// The region, or nothing if the file has none. ok becomes false if the entry is not a region.
std::optional<std::array<int, 4>> regionFromJson(const QJsonValue& json, bool& ok)
{
    ok = json.isUndefined();
    const QJsonArray numbers = json.toArray();
    if (numbers.size() != 4)
        return std::nullopt;
    std::array<int, 4> edges;
    for (std::size_t i = 0; i < edges.size(); ++i) {
        const CxValue number = fromJson(numbers[qsizetype(i)]);
        if (number.type() != CxValue::Integer)
            return std::nullopt;
        edges[i] = number.toInt();
    }
    ok = true;
    return edges;
}

std::optional<CameraSettings> settingsFromJson(const QJsonObject& root)
{
    if (root[QStringLiteral("format")].toString() != formatName ||
        root[QStringLiteral("version")].toInt() != formatVersion || !root[QStringLiteral("parameters")].isObject())
        return std::nullopt;
    CameraSettings settings;
    bool regionIsValid = false;
    settings.region = regionFromJson(root[QStringLiteral("region")], regionIsValid);
    if (!regionIsValid)
        return std::nullopt;
    const QJsonObject parameters = root[QStringLiteral("parameters")].toObject();
    for (auto entry = parameters.begin(); entry != parameters.end(); ++entry)
        settings.values.append({entry.key(), fromJson(entry.value())});
    return settings;
}

/// The settings in the text of a settings file, or nothing with the reason in problem.
std::optional<CameraSettings> settingsFromText(const QByteArray& text, QString& problem)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        problem = error.errorString();
        return std::nullopt;
    }
    auto settings = settingsFromJson(document.object());
    if (!settings)
        problem = QStringLiteral("it holds no camera settings");
    return settings;
}

} // namespace

bool writeCameraSettings(const QString& path, const SxCameraInfo& camera, const CameraSettings& settings)
{
    QJsonObject parameters;
    for (const auto& [name, value] : settings.values)
        parameters[name] = toJson(value);
    QJsonObject root;
    root[QStringLiteral("format")] = formatName;
    root[QStringLiteral("version")] = formatVersion;
    root[QStringLiteral("camera")] = QJsonObject{{CameraParamNames::deviceName, camera.deviceName},
                                                 {CameraParamNames::deviceSerialNumber, camera.serialNumber}};
    root[QStringLiteral("parameters")] = parameters;
    if (const auto& region = settings.region)
        root[QStringLiteral("region")] = QJsonArray{(*region)[0], (*region)[1], (*region)[2], (*region)[3]};

    const FileProblem problem = replaceFile(path, QJsonDocument(root).toJson());
    if (problem)
        qWarning("Cannot write camera settings to %ls: %ls", qUtf16Printable(path), qUtf16Printable(problem.text()));
    return !problem;
}

std::optional<CameraSettings> readCameraSettings(const QString& path)
{
    QByteArray text;
    QString problem = readWholeFile(path, largestFile, text).text();
    if (problem.isEmpty())
        if (auto settings = settingsFromText(text, problem))
            return settings;
    qWarning("Cannot read camera settings from %ls: %ls", qUtf16Printable(path), qUtf16Printable(problem));
    return std::nullopt;
}

bool fitsType(const CxValue& fromFile, CxValue::ExType type)
{
    const bool number = fromFile.type() == CxValue::Integer || fromFile.type() == CxValue::Floating;
    const bool wantsNumber = type == CxValue::Integer || type == CxValue::Floating;
    return wantsNumber ? number : fromFile.type() == type;
}
