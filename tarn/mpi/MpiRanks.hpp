#pragma once

#include <tarn/study/Ranks.hpp>

#include <functional>
#include <optional>
#include <string>

namespace Tarn {

/// The processes that mpirun started. Only the main thread communicates. It naps between two looks
/// at the messages, so it leaves its core to the threads that evaluate.
class MpiRanks final : public Ranks {
public:
    /// Initializes MPI. Keeps the messages of all ranks but the first until they agree.
    MpiRanks(int& argc, char**& argv);

    /// Ends MPI.
    ~MpiRanks() override;

    MpiRanks(const MpiRanks&) = delete;
    MpiRanks& operator=(const MpiRanks&) = delete;

    int rank() const noexcept override { return m_rank; }
    int size() const noexcept override { return m_size; }
    std::optional<int> agree() override;
    void serve(const std::function<void()>& evaluate, CaseExchange& cases, bool isShared,
               Orla::VCancellation cancellation) override;
    int work(const std::function<void(CaseExchange&)>& evaluate, Orla::VCancellation cancellation) override;

    /// Ends the work of this rank with the exit status \p status. Passes that of rank 0 to the
    /// others. Ends the job if a rank fails or still works. Returns the exit status of the process.
    int finish(int status);

    /// Ends the job: all ranks are killed, and the exit status is \p status.
    [[noreturn]] static void abort(int status);

private:
    [[noreturn]] void leave(int status) const;
    std::optional<int> agree(int status);

    int m_rank = 0;
    int m_size = 1;
    bool m_hasAgreed = false;
    bool m_hasBegun = false;         // all ranks were ready
    bool m_isDone = false;           // rank 0 has passed on the status to this one
    bool m_areOthersWorking = false; // known to rank 0
    std::string m_messages;          // of a rank that has not agreed
};

} // namespace Tarn
