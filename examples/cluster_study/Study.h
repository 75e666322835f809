#pragma once

#include "Cases.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace ClusterStudy {

/// What is to be run.
struct Study
{
    Cases cases;
    QString program;
    QStringList arguments; ///< with "{name}" for the parameters
};

} // namespace ClusterStudy
