// What every fuzz target needs: a private folder for the files it reads.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

// A folder of this process, made on first use.
const std::string& FuzzFolder();
// Writes the input to a file in that folder and returns its path.
std::string WriteInput(const char* name, const uint8_t* data, size_t size);
// Stops the fuzzer (a finding) when a memory block outlived its input.
void CheckNoBlocksLeft();
