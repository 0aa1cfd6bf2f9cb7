#include "EventLoops.h"

#include <QtWidgets/QApplication>

#include <limits>

namespace {
/// The status of an event loop that was ended for the sake of those inside it.
constexpr int innerOnly = std::numeric_limits<int>::min();
} // namespace

int EventLoops::run()
{
    int status = innerOnly;
    while (status == innerOnly)
        status = QApplication::exec();
    return status;
}

void EventLoops::endInner()
{
    // The toolkit can end all event loops of a thread, but not one of them.
    QCoreApplication::exit(innerOnly);
}
