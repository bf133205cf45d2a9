#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

/// Where a list's parameters live: blocks that are filled from front to back. A scan makes a thousand parameters a file,
/// and one allocation for each would cost more than all of their values. A block is freed when its list has gone and the
/// last object in it has ended.
class ParameterStorageClass
{
public:
    static constexpr size_t ALIGNMENT = 8;

    ParameterStorageClass() = default;
    ParameterStorageClass(const ParameterStorageClass &) = delete;
    ParameterStorageClass &operator=(const ParameterStorageClass &) = delete;
    ~ParameterStorageClass();

    /// Memory for one object. `place` tells its block to `End_Object`, which must follow the object's destructor.
    void *Allocate(size_t size, uint16_t &place);
    static void End_Object(void *object, uint16_t place);
    /// Sets the size of the next block to what is known to be needed.
    void Expect(size_t bytes) { NextBlockSize = bytes; }
    size_t Get_Used() const { return Used; }

private:
    struct BlockStruct
    {
        BlockStruct *Previous;
        /// The objects in the block that haven't ended, and while the list stands so many more that it can't get to 0;
        /// the list tells what it made when it goes, which spares a locked step for each object.
        std::atomic<uint32_t> Users;
        uint32_t Made;
    };
    static constexpr size_t FIRST_BLOCK_SIZE = 512;
    static constexpr size_t MAX_BLOCK_SIZE = size_t{UINT16_MAX} * ALIGNMENT; ///< what a place can tell

    static constexpr uint32_t LIST_USERS = 1u << 30;

    static void Release(BlockStruct *block, uint32_t users);
    void Add_Block(size_t size);

    BlockStruct *Last = nullptr;
    uint8_t *Free = nullptr;
    uint8_t *End = nullptr;
    size_t Used = 0; ///< over all blocks
    size_t NextBlockSize = FIRST_BLOCK_SIZE;
};

/// How much a kind of list needs, as the first one of the kind turned out. While an object stands, the next list that its
/// thread makes takes it as its size from the start.
class ExpectedParameters
{
public:
    ExpectedParameters(uint32_t count, uint32_t bytes);
    ExpectedParameters(const ExpectedParameters &) = delete;
    ExpectedParameters &operator=(const ExpectedParameters &) = delete;
    ~ExpectedParameters();

    struct SizeStruct
    {
        uint32_t Count = 0;
        uint32_t Bytes = 0;
    };
    /// What stands for this thread, once; zeros otherwise.
    static SizeStruct Take();
};
