#pragma once

/// Registers a member of an enumeration and has it printed by an object that is destroyed after
/// all that was built later, the registries included.
int printEnumAtExit();
