#pragma once

#include <trellis/VRequest.hpp>

#include <functional>
#include <optional>

namespace Tarn {

class CaseExchange;

/// The processes that evaluate a study together, numbered from 0. All of them perform the same
/// command. Rank 0 hands out the cases and writes the results.
class Ranks {
public:
    virtual ~Ranks() = default;

    /// Returns the ranks that this process belongs to; null if it works alone.
    static Ranks* current() noexcept { return s_current; }
    static void setCurrent(Ranks* ranks) noexcept { s_current = ranks; }

    virtual int rank() const noexcept = 0;
    virtual int size() const noexcept = 0;
    bool isFirst() const noexcept { return rank() == 0; }

    /// Reports that this rank is ready to evaluate, and waits for the others. Returns the exit
    /// status if one of them is not; its messages have then been printed.
    virtual std::optional<int> agree() = 0;

    /// In rank 0: calls \p evaluate in another thread, and hands out cases of \p cases to the other
    /// ranks until all results have arrived. If \p isShared is false, they get none. Cancels
    /// \p cancellation if another rank is interrupted.
    /// \throw what \p evaluate or \p cases throws.
    virtual void serve(const std::function<void()>& evaluate, CaseExchange& cases, bool isShared,
                       Orla::VCancellation cancellation) = 0;

    /// In other ranks: calls \p evaluate in another thread with cases from rank 0, until it has no
    /// more. Cancels \p cancellation if rank 0 demands it. Returns the exit status.
    /// \throw what \p evaluate throws.
    virtual int work(const std::function<void(CaseExchange& cases)>& evaluate, Orla::VCancellation cancellation) = 0;

private:
    static inline Ranks* s_current = nullptr;
};

} // namespace Tarn
