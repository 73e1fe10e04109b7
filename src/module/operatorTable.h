#pragma once

class VokTarnModule;

// Publishes the operators of the enumerated set in `module`, in the order of the table.
// Requires: the descriptors of all types and constraints that the table names have been made.
void RegisterOperators(VokTarnModule& module) noexcept;
