#pragma once

#include <cstdint>
#include <exception>

namespace velkrund {

/// Whose turn it is to use a connection. It is the caller's, until somebody works ahead for him on a thread of his own;
/// whoever comes to use the connection from another thread makes that one stand still first. Everything but Take is for
/// the caller's thread.
class TConnectionTurn {
 public:
  /// Who works ahead.
  class TWorker {
   public:
    /// Returns when the thread is done with the connection for good, with what it has failed with, which remains the
    /// worker's to tell. Undone: the transaction, or the part of it in which it began, is about to be rolled back.
    virtual std::exception_ptr StandStill(bool Undone) noexcept = 0;

   protected:
    ~TWorker() = default;
  };

  TConnectionTurn() = default;
  TConnectionTurn(const TConnectionTurn&) = delete;
  TConnectionTurn& operator=(const TConnectionTurn&) = delete;
  virtual ~TConnectionTurn() = default;

  /// Before each use of the connection.
  void Take() noexcept {
    if (FWorker) EndWork(false);
  }
  /// Before a statement begins: raises what has ended the transaction that it would be part of, unless somebody knows.
  void TakeForStatement() {
    Take();
    if (FLoss) RaiseLoss();
  }
  /// Before a roll back, of the transaction or to a mark, which nobody has worked ahead across.
  void TakeForRollback() noexcept {
    if (FWorker) EndWork(true);
    FLoss = nullptr;
  }
  /// What has ended the transaction is told by somebody else.
  void ForgetLoss() noexcept { FLoss = nullptr; }

  /// Gives the turn to a thread that Worker starts then, which says IsHere. False: something else is going on, or there
  /// is no processor to spare. OwnStatements: how many of Worker's stand on a row.
  bool Give(TWorker& Worker, int OwnStatements);
  /// By the thread: what it does is meant.
  void IsHere() const noexcept;
  /// Worker is done, and tells what it has failed with by itself.
  void Return(const TWorker& Worker) noexcept;
  /// Worker is done, and nobody is told what it has failed with; null: nothing.
  void Return(const TWorker& Worker, std::exception_ptr Untold) noexcept;

  /// A number that is another one after rows were written.
  virtual std::int64_t Writes() const = 0;

 protected:
  virtual bool MayWorkAhead(int OwnStatements) const = 0;
  virtual bool InTransaction() const = 0;

 private:
  void EndWork(bool Undone) noexcept;
  void Keep(std::exception_ptr Untold) noexcept;
  [[noreturn]] void RaiseLoss();

  // Changed only while no thread works ahead.
  TWorker* FWorker = nullptr;  // borrowed
  bool FWithinTransaction = false;
  std::exception_ptr FLoss;  // what has ended the transaction, until somebody is told
};

}  // namespace velkrund
