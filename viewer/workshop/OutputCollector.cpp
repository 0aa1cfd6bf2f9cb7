#include "OutputCollector.h"

#include <utility>

bool OutputCollector::add(const QString& text)
{
    const QMutexLocker lock(&m_lock);
    const bool first = m_collected.text.isEmpty();
    m_collected.text += text;
    // Twice the size before anything is dropped, so that each character is moved once on average.
    if (m_collected.text.size() > 2 * most) {
        qsizetype begin = m_collected.text.size() - most;
        if (const qsizetype lineEnd = m_collected.text.indexOf(QLatin1Char('\n'), begin); lineEnd >= 0)
            begin = lineEnd + 1;
        m_collected.droppedLines += QStringView(m_collected.text).left(begin).count(QLatin1Char('\n'));
        m_collected.text.remove(0, begin);
    }
    return first;
}

OutputCollector::Text OutputCollector::take()
{
    const QMutexLocker lock(&m_lock);
    return std::exchange(m_collected, {});
}
