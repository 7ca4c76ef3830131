// The fake port's moc output is built once here, not in every test that uses it.
#include "FakeCommPort.h"
