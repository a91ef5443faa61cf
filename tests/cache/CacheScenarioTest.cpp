// The cache's scenarios on files in memory.
#include "tests/support/CacheListScenarios.h"
#include "tests/support/CachePathScenarios.h"
#include "tests/support/CacheWorlds.h"

namespace tavlo::test {
namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, CachePaths, MemoryWorld);
INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, CachedLists, MemoryWorld);

}  // namespace
}  // namespace tavlo::test
