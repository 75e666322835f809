#include "Fixture.h"

void Fixture::initTestCase() { }

void Fixture::init() { }

void Fixture::cleanup() { }

void Fixture::cleanupTestCase() { }
