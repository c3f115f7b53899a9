/// A source of a list that tells how often and how far it was asked.
#pragma once

#include <Json/ListSource.h>
#include <Json/Value.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <list>
#include <stdexcept>

namespace json_test {

/// The integers from 0 on.
class CountingSource : public Json::ListSource
{
public:
    explicit CountingSource(std::size_t element_count) : element_count_(element_count) {}

    std::size_t count() const override { return element_count_; }

    void fill(std::list<Json::Value>& list, std::size_t end) const override
    {
        ++fills;
        largest_end = end > largest_end ? end : largest_end;
        while (list.size() < end)
        {
            if (failures_left > 0 && list.size() == fails_at)
            {
                --failures_left;
                throw std::runtime_error("source is out of order");
            }
            list.push_back(make(list.size()));
            ++made;
        }
    }

    mutable std::size_t fills = 0;
    mutable std::size_t made = 0;
    mutable std::size_t largest_end = 0;
    mutable std::size_t failures_left = 0; ///< how often the element `fails_at` cannot be made
    std::size_t fails_at = 0;

protected:
    virtual Json::Value make(std::size_t index) const { return Json::Value(index); }

private:
    std::size_t element_count_;
};

inline boost::shared_ptr<CountingSource> counting_source(std::size_t element_count)
{
    return boost::make_shared<CountingSource>(element_count);
}

}
