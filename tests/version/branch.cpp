// The version class under a name of its own, built from the reference on the command line.

#include "Branches.h"

#include <Utility/Xml.h>

#include <QtCore/QStringList>
#include <QtXml/QDomDocument>

#include <algorithm>
#include <tuple>

#define Version VERSION_NAME
#include <Utility/Version.cpp>

namespace {

[[maybe_unused]] const bool added = [] {
    branches().insert(QStringLiteral(VORNUTILITY_BRANCH_REFERENCE), Vorn::Util::Version::Branch());
    return true;
}();

} // namespace
