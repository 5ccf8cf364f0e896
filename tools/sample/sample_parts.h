#pragma once
// The parts of the sample machine that live in translation units of their
// own, because the test machines they use share helper names.
namespace corvane::sample {

// The browser machine of the Wine tests, left in place.
void AddBrowserMachine();
// The applications machine of the Wine tests, left in place.
void AddApplicationsMachine();

}  // namespace corvane::sample
