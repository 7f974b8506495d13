/* A doubly linked list whose elements come from a pool of blocks of its own. Removed elements go back to the pool;
 * only the destructor gives blocks back. It knows nothing about what its values point to. The bodies stand in
 * CtkDLList.inl. */
#ifndef ORV_OBJECTS_CTK_DLLIST_H
#define ORV_OBJECTS_CTK_DLLIST_H
#ifdef __cplusplus

#include "Objects/CtkExceptionObject.h"
#include "Objects/CtkObject.h"

/// What the list throws, with the place of the throw in its own source.
namespace CtkListErrors {
inline constexpr CtkExceptionObject::Error IndexOutOfRange{-1, "Index out of Range"};
inline constexpr CtkExceptionObject::Error NoEmptyElements{-2, "No empty elements available"};
inline constexpr CtkExceptionObject::Error ItemNotFound{-3, "Item not found"};
inline constexpr CtkExceptionObject::Error GeneralError{-4, "General Error"};
} // namespace CtkListErrors

/// Indices are machine words and count from 0; one that is negative or not below the count throws IndexOutOfRange. A
/// null node or position throws ItemNotFound, and so does asking an empty list for its head or tail.
/// A node stays where it is in memory until it is removed. Values are compared with ==.
template <class T>
class ORV_API CtkDLList : public CtkContainerObject {
public:
    static constexpr std::uint32_t Family = 7;
    static constexpr std::int32_t DefaultGrowBy = 10;
    /// Has Grow take the list's own block length.
    static constexpr std::uint32_t UsualGrowth = 0xFFFFFFFFu;

    struct Node {
        Node *Next = nullptr;
        Node *Prev = nullptr;
        T Item{};
    };

    /// A question about a value, for the Find operations.
    struct Predicate {
        virtual bool operator()(const T &value) const = 0;

    protected:
        ~Predicate() = default;
    };

    /// A list whose growBy is below 1 gets elements by calls of Grow only.
    explicit CtkDLList(std::int32_t growBy = DefaultGrowBy) noexcept : growBy_(growBy) {}
    CtkDLList(const CtkDLList &) = delete;
    CtkDLList &operator=(const CtkDLList &) = delete;
    ~CtkDLList() override;

    std::uint32_t GetFamily() const override;

    // Short forms of the accessors below.
    virtual const T &Item(std::int64_t index) const;
    virtual const T &ItemOf(Node *node) const;
    virtual void SetItem(std::int64_t index, T value);
    virtual void SetItemOf(Node *node, T value);

    // Search by value: index or -1, node or null; the last form begins at a node.
    virtual std::int32_t IndexOf(const T &value) const;
    virtual Node *NodeOf(const T &value) const;
    virtual Node *NodeOf(const T &value, Node *start) const;

    // Adding one value, or copies of all values of another list in their order. Each gives the first new node, null
    // when there is none.
    virtual Node *AddHead(T value);
    virtual Node *AddHead(const CtkDLList &values);
    virtual Node *AddTail(T value);
    virtual Node *AddTail(const CtkDLList &values);
    virtual Node *Push(T value);
    virtual Node *Append(T value);

    // Inserting beside a node or an index that exists; results as above.
    virtual Node *InsertBefore(Node *node, T value);
    virtual Node *InsertAfter(Node *node, T value);
    virtual Node *InsertBefore(Node *node, const CtkDLList &values);
    virtual Node *InsertAfter(Node *node, const CtkDLList &values);
    virtual Node *InsertBeforeIndex(std::int64_t index, T value);
    virtual Node *InsertAfterIndex(std::int64_t index, T value);
    virtual Node *InsertBeforeIndex(std::int64_t index, const CtkDLList &values);
    virtual Node *InsertAfterIndex(std::int64_t index, const CtkDLList &values);

    // Removing; by value the first equal one, in the second form the first at or behind a node. A value that is not
    // there throws ItemNotFound.
    virtual T RemoveHead();
    virtual T RemoveTail();
    virtual void RemoveAll();
    virtual T RemoveAt(std::int64_t index);
    virtual void RemoveValue(const T &value);
    virtual void RemoveValue(const T &value, Node *start);
    virtual T RemoveNode(Node *node);

    // Search by predicate: index or -1, node or null; from the start, or from an index or node on.
    virtual std::int32_t Find(const Predicate &predicate) const;
    virtual std::int32_t Find(const Predicate &predicate, std::int64_t start) const;
    virtual Node *FindNode(const Predicate &predicate) const;
    virtual Node *FindNode(const Predicate &predicate, Node *start) const;

    /// Null for an index out of range.
    virtual Node *NodeAt(std::int64_t index) const;
    virtual const T &HeadValue() const;
    virtual const T &TailValue() const;
    virtual const T &ValueAt(std::int64_t index) const;
    virtual const T &ValueOfNode(Node *node) const;
    /// Null when the list is empty.
    virtual Node *HeadNode() const;
    virtual Node *TailNode() const;

    /// Give the value at the position and move the position on, to null behind the last value.
    virtual const T &GetNext(Node *&position) const;
    virtual const T &GetPrev(Node *&position) const;

    virtual void SetAt(std::int64_t index, T value);
    /// Adds a block of count elements to the pool; none for 0. Throws GeneralError when there is no memory for it.
    virtual void Grow(std::uint32_t count);

    std::int32_t GetCount() const noexcept { return count_; }
    std::int32_t GetGrowBy() const noexcept { return growBy_; }
    std::int32_t GetBlockCount() const noexcept;

private:
    struct Block {
        Block *Next;
        Node *Elements;
    };

    [[noreturn]] static void Throw(const CtkExceptionObject::Error &error, std::int32_t line);
    static Node *Existing(Node *node);
    Node *ExistingAt(std::int64_t index) const;
    Node *TakeFromPool(T &&value);
    void ReturnToPool(Node *node) noexcept;
    Node *Link(Node *prev, Node *next, T &&value);
    Node *LinkAll(Node *prev, Node *next, const CtkDLList &values);
    Node *Unlink(Node *node) noexcept;

    std::int32_t count_ = 0;
    std::int32_t growBy_;
    Block *blockChain_ = nullptr;
    Node *head_ = nullptr;
    Node *tail_ = nullptr;
    Node *freeHead_ = nullptr;
    Node *freeTail_ = nullptr;
};

#endif
#endif
