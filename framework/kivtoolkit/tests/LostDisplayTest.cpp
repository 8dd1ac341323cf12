// The display goes away while a dialog is open: the process lives on, and the host hears why.

#include <csignal>
#include <cstdlib>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include "framework/kivtoolkit/tests/GuestHost.h"

#include <gtest/gtest.h>

namespace kivtoolkit::tests {
namespace {

// A display of this test's own, to be killed.
class Server {
public:
    Server()
    {
        int ends[2] = {-1, -1};
        if (pipe(ends) != 0) {
            return;
        }
        process_ = fork();
        if (process_ == 0) {
            close(ends[0]);
            const std::string end = std::to_string(ends[1]);
            execlp("Xvfb", "Xvfb", "-displayfd", end.c_str(), "-screen", "0", "1000x800x24",
                   "-nolisten", "tcp", static_cast<char*>(nullptr));
            _exit(127);
        }
        close(ends[1]);
        std::string number;
        char digit = 0;
        while (read(ends[0], &digit, 1) == 1 && digit != '\n') {
            number += digit;
        }
        close(ends[0]);
        name_ = ":" + number;
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server() { Kill(); }

    const std::string& Name() const { return name_; }
    void Kill()
    {
        if (process_ > 0) {
            kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
            process_ = -1;
        }
    }

private:
    pid_t process_ = -1;
    std::string name_;
};

TEST(LostDisplay, EndsTheDialogAndSaysWhy)
{
    Server server;
    ASSERT_GT(server.Name().size(), 1U);
    setenv("DISPLAY", server.Name().c_str(), 1);
    GuestHost host;
    ASSERT_TRUE(host.ShowDialog(TypeTitle("first"))) << GuestHost::Failure();
    host.whileOpen = [&] {
        server.Kill();
        throw std::runtime_error("stay open");
    };
    EXPECT_FALSE(host.ShowDialog(TypeTitle("second")));
    EXPECT_NE(GuestHost::Failure(), "");
    EXPECT_EQ(host.Title(), "first");
    host.whileOpen = {};
    EXPECT_FALSE(host.ShowDialog(TypeTitle("third")));
    EXPECT_NE(GuestHost::Failure(), "");
}

}  // namespace
}  // namespace kivtoolkit::tests
