#pragma once

#include <cstdint>

namespace velmora::soundlayer {

/// What a handle can stand for.
class Object {
public:
    enum class Kind { Stream, Encoder, Effect };

    explicit Object(Kind kind)
        : m_kind(kind)
    {
    }
    virtual ~Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    Kind ObjectKind() const { return m_kind; }
    std::uint32_t Handle() const { return m_handle; }

private:
    friend class HandleTable;
    const Kind m_kind;
    std::uint32_t m_handle = 0;
};

} // namespace velmora::soundlayer
