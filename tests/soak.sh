# Sourced by ./test.
# The random tests at length: FACTOR (20) times as many cases as in a usual run.
jobs=$(nproc)
export VOKTARN_SOAK="${1:-20}"

quietly "configuring" cmake --preset release -DVOKTARN_TESTS=ON
quietly "building" cmake --build --preset release -j "$jobs"
ctest --preset release -j "$jobs" -E '^install$' --timeout 36000
