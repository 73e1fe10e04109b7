// Makes the fault that its argument names. The sanitizers must end the program before the last line: a build in which
// they do not would call every other test sound.
#include <cstring>
#include <iostream>
#include <limits>
#include <memory>

namespace {

// Volatile: the compiler must not see the fault coming.
volatile int kOne = 1;

int PassTheEndOfABlock() {
  const int size = 15 + kOne;
  const auto block = std::make_unique<char[]>(static_cast<std::size_t>(size));
  block[static_cast<std::size_t>(size)] = 'x';
  return block[0];
}

int PassTheEndOfTheIntegers() {
  return std::numeric_limits<int>::max() + kOne;
}

}  // namespace

int main(int argc, char** argv) {
  const int result =
      argc == 2 && std::strcmp(argv[1], "overflow") == 0 ? PassTheEndOfTheIntegers() : PassTheEndOfABlock();
  std::cout << "survived " << result << std::endl;
  return 0;
}
