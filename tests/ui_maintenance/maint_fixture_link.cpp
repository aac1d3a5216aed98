// The window tests use the maintenance suite's fixture: files with many rows
// and their damage.
#include "maintenance/maint_fixture.cpp"  // NOLINT(bugprone-suspicious-include)
