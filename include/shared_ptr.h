#pragma once

/// The smart pointer of the library's public interface: an object of any type, shared by an atomic count that
/// stands in a block of its own. There are no weak references and no custom deleters.
///
/// Copies of one shared object may be made and dropped on different threads at once. One variable may not be
/// assigned on one thread while another reads it, and the object itself is not protected.
///
/// An assignment releases what the left side held before it takes the right side. Assigning a pointer that is
/// the last reference to itself therefore destroys the object: don't.
template <class T>
class shared_ptr {
 public:
  /// An empty pointer: no object, no count.
  shared_ptr() = default;

  /// Takes ownership of `pointer`, which comes from plain `new` (or is null), with a count of 1.
  explicit shared_ptr(T* pointer) : refCount(new unsigned int(1)), object(pointer) {}

  shared_ptr(const shared_ptr& other) : refCount(other.refCount), object(other.object) { addRef(); }

  shared_ptr& operator=(const shared_ptr& other) {
    if (refCount != nullptr) putRef();
    object = other.object;
    refCount = other.refCount;
    addRef();
    return *this;
  }

  /// Takes over `other`'s reference, which leaves `other` empty and the count as it is.
  shared_ptr(shared_ptr&& other) noexcept : refCount(other.refCount), object(other.object) { other.forget(); }

  shared_ptr& operator=(shared_ptr&& other) noexcept {
    if (this == &other) return *this;
    if (refCount != nullptr) putRef();
    refCount = other.refCount;
    object = other.object;
    other.forget();
    return *this;
  }

  /// Drops this reference; the last one deletes the object.
  ~shared_ptr() {
    if (refCount != nullptr) putRef();
  }

  T* operator->() const { return object; }
  T& operator*() const { return *object; }

  /// The object, or null. It stays alive for as long as some shared_ptr to it does.
  T* get() const { return object; }

  explicit operator bool() const { return object != nullptr; }

  friend bool operator==(const shared_ptr& left, const shared_ptr& right) {
    return left.object == right.object;
  }
  friend bool operator!=(const shared_ptr& left, const shared_ptr& right) {
    return left.object != right.object;
  }
  friend bool operator==(const shared_ptr& left, decltype(nullptr)) { return left.object == nullptr; }
  friend bool operator!=(const shared_ptr& left, decltype(nullptr)) { return left.object != nullptr; }

  /// Drops this variable's reference. Only for a pointer that holds one: it does not test for an empty
  /// pointer, and it leaves the variable pointing at the others' object unless it was the last reference.
  void putRef() {
    if (__atomic_sub_fetch(refCount, 1U, __ATOMIC_SEQ_CST) != 0) return;
    delete object;
    object = nullptr;
    delete refCount;
    refCount = nullptr;
  }

 private:
  void addRef() {
    if (refCount != nullptr) __atomic_add_fetch(refCount, 1U, __ATOMIC_SEQ_CST);
  }

  void forget() {
    refCount = nullptr;
    object = nullptr;
  }

  unsigned int* refCount = nullptr;
  T* object = nullptr;
};
