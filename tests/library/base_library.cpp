// What a host simulator's base library exports.
extern "C" __attribute__((visibility("default"))) char GetVHDLHierarchySeparator() {
    return '/';
}
