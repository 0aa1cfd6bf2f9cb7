#include "PythonSide.h"

#include "ErrorCopy.h"
#include "process/UnwrittenErrors.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace {

QString folder()
{
    const QDir programs(QCoreApplication::applicationDirPath());
    const QString built = programs.filePath(QStringLiteral("../python"));
    const bool isBuilt = QFileInfo::exists(built + QStringLiteral("/vantrel_viewer"));
    return QDir::cleanPath(isBuilt ? built : programs.filePath(QStringLiteral(VANTREL_INSTALLED_PYTHON)));
}

/// The text as a literal of Python. File names that are not valid in the system's encoding keep their bytes.
QString literal(const QString& text)
{
    QString escaped = QStringLiteral("'");
    for (const uint code : text.toUcs4()) {
        if (code >= ' ' && code < 0x7f && code != '\'' && code != '\\')
            escaped += QChar(char16_t(code));
        else
            escaped += QStringLiteral("\\U%1").arg(code, 8, 16, QLatin1Char('0'));
    }
    return escaped + QLatin1Char('\'');
}

QString literal(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

/// The address of an object or a function, as a number.
template<typename Pointee>
QString address(Pointee* pointer)
{
    return QString::number(reinterpret_cast<quintptr>(pointer));
}

} // namespace

// Below, all values go into a text at once: a value may itself contain the sign of a place, such as %1.

QString PythonSide::preparation(const QString& environment)
{
    // No byte code is written: nothing would remove it from the folder when the package is removed.
    return QStringLiteral("import sys\n"
                          "kept = sys.dont_write_bytecode\n"
                          "sys.dont_write_bytecode = True\n"
                          "sys.path.insert(0, %1)\n"
                          "try:\n"
                          "    import vantrel_viewer.interpreter, vantrel_viewer.leaving, vantrel_viewer.nested\n"
                          "    import vantrel_viewer.running, vantrel_viewer.signals\n"
                          "finally:\n"
                          "    sys.path.remove(%1)\n"
                          "    sys.dont_write_bytecode = kept\n"
                          "vantrel_viewer.interpreter.prepare(%2)\n"
                          "vantrel_viewer.leaving.prepare(%3, %4)\n"
                          "vantrel_viewer.nested.prepare()\n")
        .arg(literal(folder()), literal(environment), address(&ErrorCopy::copyWritesOf),
             address(&UnwrittenErrors::write));
}

QString PythonSide::callFor(const Call& call)
{
    QStringList arguments;
    for (const QString& argument : call.arguments)
        arguments += literal(argument);
    // One expression, which leaves no name behind.
    return QStringLiteral("__import__('vantrel_viewer.running').running.run_file(%1, %2, [%3], %4, %5, globals())\n")
        .arg(literal(call.file), literal(call.shownPath), arguments.join(QStringLiteral(", ")), literal(call.stays),
             address(call.outcome));
}

QString PythonSide::callFor(const TextCall& call)
{
    return QStringLiteral("__import__('vantrel_viewer.running').running.run_text(%1, %2, %3, %4, %5, globals())\n")
        .arg(literal(call.text), literal(call.title), literal(call.file), literal(call.stays), address(call.outcome));
}

QString PythonSide::endOfChild(int status)
{
    return QStringLiteral("__import__('vantrel_viewer.leaving').leaving.leave_child(%1)\n").arg(status);
}
