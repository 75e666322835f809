#pragma once

/// Registers a member of an enumeration. A static object that was created before the registries,
/// and so is destroyed after them, prints it at the end of the process.
int printEnumAtExit();
