// Libraries are built with hidden visibility; what other libraries need is marked with this.
#pragma once

#define VOKTARN_EXPORT __attribute__((visibility("default")))
