// What every store must do (tests/store/contract.cpp), required of the backend over the map.
#include "store/contract.h"

#include <memory>
#include <utility>

#include "map_backend.h"

namespace velanor::store {
namespace {

// The database with the files that it keeps its records in.
struct Shelf {
  Files kept;
};
class MapDatabase : private Shelf, public StoreDatabase {
 public:
  MapDatabase() : StoreDatabase(std::make_unique<MapBackend>(kept)) {}
};

INSTANTIATE_TEST_SUITE_P(Map, StoreContract,
                         testing::Values(StoreFactory{"Map",
                                                      [] { return std::make_unique<MapDatabase>(); }}));

}  // namespace
}  // namespace velanor::store
