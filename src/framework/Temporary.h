// Objects that the framework makes for handles which it did not create: FromHandle and its kin give them out, nobody
// deletes them, and they end with the message in whose handler they were made or, outside of any, when the modal loop
// goes idle.
#pragma once

#include <memory>

#include "framework/Object.h"

namespace afx {

// Lets go of its handle instead of closing it.
template <class Base>
class Temporary : public Base {
public:
    ~Temporary() override { this->Detach(); }
};

// Keeps the object for this thread.
void AddTemporary(std::unique_ptr<CObject> object);

// A temporary object of the class for the handle; null for null.
template <class Class, typename Handle>
Class* MakeTemporary(Handle handle) {
    if (handle == nullptr) return nullptr;
    auto object = std::make_unique<Temporary<Class>>();
    object->Attach(handle);
    Class* const result = object.get();
    AddTemporary(std::move(object));
    return result;
}

}  // namespace afx
