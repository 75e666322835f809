#pragma once

#include "Report.h"

namespace SystemReport {

/// Keeps the messages that the library and Qt write with qDebug() and the like from now on, instead
/// of printing them.
void collectMessages();

/// The messages that were kept.
Section messages();

} // namespace SystemReport
