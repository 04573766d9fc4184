#include <cubes/database/TRkConnectionManager.h>

TRkConnectionManager& getConnectionManagerInstance() {
    static TRkConnectionManager manager;
    return manager;
}
