#pragma once
#include <atomic>
#include <libpq-fe.h>

// The client library of PostgreSQL, taken in when a server is first talked to: with all that it needs for
// encryption and directories it would be a tenth of every start, and most databases are files. The functions
// have the library's own names, which hide it in this namespace; calling one is calling the library.
namespace platform::sql::postgresql {

/// Where a function of the library stands. Failure 3706 when the library is not installed.
void (*functionOf(const char* name))();

template <class Function>
class Late;

template <class Result, class... Arguments>
class Late<Result(Arguments...)> {
 public:
  constexpr explicit Late(const char* name) : name_(name) {}
  Result operator()(Arguments... arguments) const {
    auto* function = found_.load(std::memory_order_relaxed);
    if (!function) {
      function = reinterpret_cast<Result (*)(Arguments...)>(functionOf(name_));
      found_.store(function, std::memory_order_relaxed);
    }
    return function(arguments...);
  }

 private:
  const char* name_;
  mutable std::atomic<Result (*)(Arguments...)> found_ = nullptr;
};

#define PLATFORM_LIBPQ(function) inline constinit const Late<decltype(::function)> function(#function)
PLATFORM_LIBPQ(PQclear);
PLATFORM_LIBPQ(PQcmdStatus);
PLATFORM_LIBPQ(PQcmdTuples);
PLATFORM_LIBPQ(PQconnectPoll);
PLATFORM_LIBPQ(PQconnectStartParams);
PLATFORM_LIBPQ(PQconnectionNeedsPassword);
PLATFORM_LIBPQ(PQconsumeInput);
PLATFORM_LIBPQ(PQerrorMessage);
PLATFORM_LIBPQ(PQfinish);
PLATFORM_LIBPQ(PQfmod);
PLATFORM_LIBPQ(PQfname);
PLATFORM_LIBPQ(PQftable);
PLATFORM_LIBPQ(PQftablecol);
PLATFORM_LIBPQ(PQftype);
PLATFORM_LIBPQ(PQgetResult);
PLATFORM_LIBPQ(PQgetisnull);
PLATFORM_LIBPQ(PQgetlength);
PLATFORM_LIBPQ(PQgetvalue);
PLATFORM_LIBPQ(PQgssEncInUse);
PLATFORM_LIBPQ(PQisBusy);
PLATFORM_LIBPQ(PQnfields);
PLATFORM_LIBPQ(PQnparams);
PLATFORM_LIBPQ(PQntuples);
PLATFORM_LIBPQ(PQparamtype);
PLATFORM_LIBPQ(PQresultErrorField);
PLATFORM_LIBPQ(PQresultStatus);
PLATFORM_LIBPQ(PQsendDescribePrepared);
PLATFORM_LIBPQ(PQsendPrepare);
PLATFORM_LIBPQ(PQsendQuery);
PLATFORM_LIBPQ(PQsendQueryParams);
PLATFORM_LIBPQ(PQsendQueryPrepared);
PLATFORM_LIBPQ(PQsetErrorVerbosity);
PLATFORM_LIBPQ(PQsetNoticeReceiver);
PLATFORM_LIBPQ(PQsocket);
PLATFORM_LIBPQ(PQsslInUse);
PLATFORM_LIBPQ(PQstatus);
PLATFORM_LIBPQ(PQtransactionStatus);
#undef PLATFORM_LIBPQ

}  // namespace platform::sql::postgresql
