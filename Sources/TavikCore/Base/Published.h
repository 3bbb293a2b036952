#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tavik {

/// Ends an observation when it is destroyed. May outlive what was observed.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;

    explicit Subscription(std::shared_ptr<void> observer) : observer(std::move(observer)) {}

private:
    std::shared_ptr<void> observer;
};

/// A value that tells its observers of every change. For one thread.
///
/// An observer is called with the new value before it takes effect: it sees both, and acts after
/// the current call. An observer may end its own or another observation and may observe anew.
template<typename T>
class Published {
public:
    using Observer = std::function<void(const T& newValue)>;

    /// `didSet` is called after each change by `set`.
    explicit Published(T initial, Observer didSet = {})
        : current(std::move(initial)), didSet(std::move(didSet)) {}

    ~Published() = default;
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    const T& value() const { return current; }

    void set(T value) {
        replace(std::move(value));
        if (didSet) didSet(current);
    }

    /// A change that comes from where the value is kept: announced, but not passed to `didSet`.
    void replace(T value) {
        announce(value);
        current = std::move(value);
    }

    Subscription observe(Observer observer) const {
        forgetEnded();
        auto kept = std::make_shared<Observer>(std::move(observer));
        observers.push_back(kept);
        return Subscription(std::move(kept));
    }

private:
    void forgetEnded() const {
        std::erase_if(observers, [](const auto& observer) { return observer.expired(); });
    }

    void announce(const T& value) const {
        forgetEnded();
        const auto observersNow = observers;
        for (const auto& weak : observersNow)
            if (const auto observer = weak.lock()) (*observer)(value);
    }

    T current;
    Observer didSet;
    mutable std::vector<std::weak_ptr<Observer>> observers;
};

} // namespace tavik
