#include "HelpTexts.h"

#include <QtCore/QFile>
#include <QtCore/QStringList>

namespace {

/// The arguments of a signature, split at the commas that stand outside brackets and quotes.
QStringList splitArguments(const QString& text)
{
    QStringList arguments;
    QString current;
    int depth = 0;
    bool quoted = false;
    for (const QChar c : text) {
        if (c == u'"')
            quoted = !quoted;
        else if (!quoted && (c == u'[' || c == u'{' || c == u'('))
            ++depth;
        else if (!quoted && (c == u']' || c == u'}' || c == u')'))
            --depth;
        if (c == u',' && !quoted && depth == 0) {
            arguments.append(current.trimmed());
            current.clear();
        } else {
            current.append(c);
        }
    }
    if (!current.trimmed().isEmpty())
        arguments.append(current.trimmed());
    return arguments;
}

/// "id: int = -1" without its type: "id=-1".
QString withoutType(const QString& argument)
{
    const qsizetype colon = argument.indexOf(u':');
    const qsizetype equals = argument.indexOf(QStringLiteral(" = "));
    QString result = argument.left(colon < 0 ? equals : colon);
    if (equals >= 0)
        result += u'=' + argument.mid(equals + 3);
    return result;
}

/// The signature in the form that the interpreter expects at the start of a help text.
QString signatureForInterpreter(const QString& owner, const QString& name, const QString& arguments)
{
    QStringList parts{owner == QStringLiteral("vantrel") ? QStringLiteral("$module") : QStringLiteral("$self")};
    for (const QString& argument : splitArguments(arguments))
        parts.append(withoutType(argument));
    parts.append(QStringLiteral("/"));
    return name + u'(' + parts.join(QStringLiteral(", ")) + QStringLiteral(")\n--\n\n");
}

} // namespace

const HelpTexts& HelpTexts::instance()
{
    static const HelpTexts texts([] {
        QFile file(QStringLiteral(":/help/scripting.txt"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }());
    return texts;
}

HelpTexts::HelpTexts(const QString& source)
{
    // A chapter heading ends an entry just as the next entry does.
    QString unified = source;
    unified.replace(QStringLiteral("\n--- "), QStringLiteral("\n=== --- "));
    const QStringList entries = unified.split(QStringLiteral("\n=== "));
    for (const QString& entry : entries) {
        const qsizetype open = entry.indexOf(u'(');
        const qsizetype lineEnd = entry.indexOf(u'\n');
        const qsizetype arrow = entry.indexOf(QStringLiteral(") -> "));
        if (open < 0 || lineEnd < 0 || arrow < 0 || arrow > lineEnd)
            continue; // a chapter, an attribute or a type: the interpreter has no place for its text
        const QString qualified = entry.left(open);
        const qsizetype dot = qualified.indexOf(u'.');
        const QString signature =
            signatureForInterpreter(qualified.left(dot), qualified.mid(dot + 1), entry.mid(open + 1, arrow - open - 1));
        m_texts.insert(qualified.toUtf8(), (signature + entry.mid(lineEnd + 1).trimmed()).toUtf8());
    }
}

const char* HelpTexts::function(const char* moduleName, const char* functionName) const
{
    const auto found = m_texts.constFind(QByteArray(moduleName) + '.' + functionName);
    return found == m_texts.constEnd() ? nullptr : found->constData();
}

const char* HelpTexts::method(const char* objectName, const char* methodName) const
{
    const QByteArray object(objectName);
    const char* type = object == "cameraObj"  ? "Camera"
                       : object == "graphObj" ? "Graph"
                       : object == "imgObj"   ? "Image"
                                              : "";
    return function(type, methodName);
}
