#pragma once

#include <boost/asio/signal_set.hpp>
#include <span>
#include <string>

#include "app/cockpit.h"
#include "app/native.h"
#include "web/http_server.h"
#include "web/presenter.h"

namespace app {

// The program as a process of this system: the cockpit on the real machine, and the server of its page.
class Program {
  public:
    // Throws a Failure when the folder cannot be opened or no port for the page is free.
    Program(const std::string& folder, std::span<const web::Asset> page);

    // The address of the page.
    std::string address() const { return server_.address(); }
    // Runs until the user ends the program, on the page or by SIGINT or SIGTERM. No failure of a handler ends it.
    void run();

    Cockpit& cockpit() { return cockpit_; }
    platform::native::Loop& loop() { return platform_.loop; }

  private:
    void await_second_signal();

    platform::native::MachinePlatform platform_;
    Cockpit cockpit_;
    web::HttpServer server_;
    web::Presenter presenter_;
    boost::asio::signal_set signals_;
    int signal_count_ = 0;
};

}  // namespace app
