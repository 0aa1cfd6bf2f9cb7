#include "PythonSide.h"

#include "ErrorCopy.h"
#include "InterpreterCalls.h"
#include "ScriptPulse.h"
#include "process/UnwrittenErrors.h"

namespace {
PythonSide* theSide = nullptr;
} // namespace

PythonSide::PythonSide(const QString& folder, bool exitEndsScript)
    : m_folder(folder)
    , m_exitEndsScript(exitEndsScript)
{
    m_folder.replace(QLatin1Char('\\'), QStringLiteral("\\\\")).replace(QLatin1Char('\''), QStringLiteral("\\'"));
    theSide = this;
}

PythonSide::~PythonSide()
{
    theSide = nullptr;
}

PythonSide* PythonSide::instance()
{
    return theSide;
}

void PythonSide::interpreterWillStart(const QString& plugin) const
{
    if (m_exitEndsScript)
        InterpreterCalls::surviveSystemExit(plugin);
}

QString PythonSide::preparation() const
{
    const ScriptPulse* pulse = ScriptPulse::instance();
    const QString pulses = pulse ? pulse->preparation() : QString();
    if (m_isPrepared && pulses.isEmpty())
        return {};
    // No byte code is written: nothing would remove it from the folder when the package is removed.
    const QString import = QStringLiteral("import sys\n"
                                          "kept = sys.dont_write_bytecode\n"
                                          "sys.dont_write_bytecode = True\n"
                                          "sys.path.insert(0, '%1')\n"
                                          "try:\n"
                                          "    import vantrel_viewer\n"
                                          "finally:\n"
                                          "    sys.path.remove('%1')\n"
                                          "    sys.dont_write_bytecode = kept\n")
                               .arg(m_folder);
    const QString rest = m_isPrepared ? QString()
                                      : QStringLiteral("vantrel_viewer.prepare(%1, %2)\n")
                                            .arg(reinterpret_cast<quintptr>(&ErrorCopy::copyWritesOf))
                                            .arg(reinterpret_cast<quintptr>(&UnwrittenErrors::write));
    return import + rest + pulses;
}

void PythonSide::prepared()
{
    m_isPrepared = true;
    if (ScriptPulse* pulse = ScriptPulse::instance())
        pulse->prepared();
}

QString PythonSide::endOfChild()
{
    return QStringLiteral("import vantrel_viewer\nvantrel_viewer.end_child()\n");
}
