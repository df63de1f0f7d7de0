#pragma once

#include <cstddef>
#include <vector>

namespace Yr {

// A growable buffer of elements; Base64 and a few utilities hand results back in it.
template <class T>
class DataBuffer {
public:
    DataBuffer() = default;
    DataBuffer(const T* data, std::size_t size) : elements_(data, data + size) {}

    T* GetData() { return elements_.data(); }
    const T* GetData() const { return elements_.data(); }
    std::size_t GetSize() const { return elements_.size(); }
    bool IsEmpty() const { return elements_.empty(); }

    void Resize(std::size_t size) { elements_.resize(size); }
    void Clear() { elements_.clear(); }
    void Append(const T* data, std::size_t size) {
        elements_.insert(elements_.end(), data, data + size);
    }

private:
    std::vector<T> elements_;
};

}  // namespace Yr
