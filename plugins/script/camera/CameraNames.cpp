#include "CameraNames.h"

/// The suffix that stands for a range word at the end of a name; empty for any other ending.
static QString rangeSuffix(const QString& ending)
{
    if (ending == QLatin1String("_maximum"))
        return QStringLiteral(":max");
    if (ending == QLatin1String("_minimum"))
        return QStringLiteral(":min");
    if (ending == QLatin1String("_increment"))
        return QStringLiteral(":inc");
    return QString();
}

CameraAttributeName fx_cam_parseAttributeName(const QString& text)
{
    using Action = CameraAttributeName::Action;
    CameraAttributeName name;
    if (text.startsWith(QLatin1String("set_")))
        name.action = Action::Set;
    else if (text.startsWith(QLatin1String("get_")) || text.startsWith(QLatin1String("is_")))
        name.action = Action::Read;
    else if (text.startsWith(QLatin1String("enable_")))
        name.action = Action::Enable;
    else if (text.startsWith(QLatin1String("disable_")))
        name.action = Action::Disable;
    else
        return name;

    name.parameter = text.mid(text.indexOf(QLatin1Char('_')) + 1);
    name.target = name.parameter;
    const qsizetype last = name.parameter.lastIndexOf(QLatin1Char('_'));
    const QString suffix = last > 0 ? rangeSuffix(name.parameter.mid(last)) : QString();
    if (!suffix.isEmpty()) {
        name.parameter.truncate(last);
        name.target = name.parameter + suffix;
    }
    return name;
}

CameraParameterName fx_cam_splitSuffix(const QString& name)
{
    using Selected = CameraParameterName::Selected;
    const qsizetype colon = name.indexOf(QLatin1Char(':'));
    if (colon < 0)
        return {name, Selected::Value};
    const QString base = name.left(colon);
    const QString suffix = name.mid(colon);
    if (suffix == QLatin1String(":min"))
        return {base, Selected::Minimum};
    if (suffix == QLatin1String(":max"))
        return {base, Selected::Maximum};
    if (suffix == QLatin1String(":inc"))
        return {base, Selected::Increment};
    if (suffix == QLatin1String(":info"))
        return {base, Selected::Value};
    return {name, Selected::Value};
}
