#pragma once

// The library's headers need two keywords of Qt that this project does without.
#include <QtCore/qobjectdefs.h>
#define signals Q_SIGNALS
#define slots Q_SLOTS
#include <Qsci/qscicommandset.h>
#include <Qsci/qscilexerpython.h>
#include <Qsci/qsciscintilla.h>
#include <Qsci/qscistyle.h>
#undef slots
#undef signals
