// A small account, package and tree, an operation on them, and what may and must be there afterwards.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "transfer/dbTrans.h"

namespace test {

/// How an operation ended by its own account.
struct Ending {
    bool complete = false;  ///< all codes were 0, nothing was left out
    std::string words;      ///< the codes and the report, for failing tests
};

enum class Operation { exportAll, importFresh, importExisting, importTree };

/// An operation, and the key of the databases that it works on; empty: they are plain.
struct Scenario {
    Operation operation;
    std::string key;

    Scenario(Operation chosen, std::string itsKey = "")  // NOLINT(google-explicit-constructor): mostly there is no key
        : operation(chosen), key(std::move(itsKey)) {}
};

/// As part of the name of a test.
std::string nameOf(const Scenario& scenario);

/// The content of a folder: rows by "<database>:<table>", bytes by file name. Temporary files are left out: they stand
/// under no final name.
using State = std::map<std::string, std::string>;

/// Makes the folders that the operation starts from in the empty folder `path`.
void makeWorld(const Scenario& scenario, const std::string& path);

/// Runs its argument, the operation itself, while something is disturbed.
using Around = std::function<void(const std::function<void()>& operation)>;

/// Runs the operation with a new transfer object. Running out of memory is an ending like others.
Ending run(
    const Scenario& scenario, const std::string& path,
    const Around& around = [](const std::function<void()>& operation) { operation(); });

/// What a host does before it tries again.
void prepareAgain(Operation operation, const std::string& path);

/// Fails the test when a database is not whole.
State stateOf(const Scenario& scenario, const std::string& path);

/// Every table and every file is there as before or as after an undisturbed run; message files, which gather what could
/// be read, are whole. "" or what is not so.
std::string firstHalfDone(const State& before, const State& after, const State& now);

}  // namespace test
