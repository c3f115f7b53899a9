/// Members that copies of their owner do not take over.
#pragma once

namespace Vela::detail {

/// A `T` that is made anew where its owner is copied.
template <class T>
class NotCopied : public T
{
public:
    NotCopied() = default;
    NotCopied(const NotCopied&) : T() {}
    NotCopied& operator=(const NotCopied&) = delete;
};

} // namespace Vela::detail
