#include "numbers/SDError.h"

namespace {

int sError = 0;

}  // namespace

int SDCheckError() noexcept {
  return sError;
}

void SDClearError() noexcept {
  sError = 0;
}

void SDSetError() noexcept {
  sError = 1;
}
