// The root class: instances start zeroed (members are value-initialised),
// destructors release owned parts, Free deletes a heap instance.
#pragma once

namespace kestrel {

class TFiler;

// Not copyable; a heap instance is freed with Free or delete.
class TObject {
public:
  TObject() = default;
  TObject(const TObject &) = delete;
  TObject &operator=(const TObject &) = delete;
  virtual ~TObject() = default;

  // Frees a heap-allocated instance. Use the free function Free(p) where p may be null.
  void Free() { delete this; }
};

// Free on null does nothing.
inline void Free(TObject *obj) { delete obj; }

// Deletes the object and leaves the pointer null.
template <typename T> void FreeAndNil(T *&obj) {
  T *p = obj;
  obj = nullptr;
  delete p;
}

// Classes whose destruction goes through an operation of their own (a Free
// that releases owned parts first) still destroy cleanly through delete.
class TPersistent : public TObject {
public:
  virtual void Assign(TPersistent *source);

  // Names the properties that the object streams itself (see Filer.h).
  virtual void DefineProperties(TFiler * /*filer*/) {}

protected:
  virtual void AssignTo(TPersistent *dest);
};

} // namespace kestrel
