#pragma once

#include "Report.h"

namespace SystemReport {

// The tables of the report that need no more than the library.

Section versions();   ///< library, Qt, product and operating system
Section processors(); ///< CpuInfo
Section folders();    ///< the standard folders and whether they exist
Section pathForms();  ///< paths of this machine and others in the forms of both systems
Section language();   ///< of the user interface
Section settings();   ///< the product's machine-wide settings
Section processes();  ///< the running programs of the product
Section flags();      ///< the flags that are set

/// The lowest, average and highest values of \a samples.
Section counters(const QVector<Sample> &samples);

} // namespace SystemReport
