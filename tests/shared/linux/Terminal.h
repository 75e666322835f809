#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <array>
#include <csignal>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

/// A program that runs on a terminal of its own, as if a user had started it there. It is killed
/// with the object.
class Terminal
{
public:
    Terminal(const QString &program, const QStringList &arguments)
    {
        std::vector<QByteArray> words{QFile::encodeName(program)};
        for (const QString &argument : arguments)
            words.push_back(QFile::encodeName(argument));
        std::vector<char *> pointers;
        for (QByteArray &word : words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
        process_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
        if (process_ == 0) {
            execv(pointers.front(), pointers.data());
            _exit(EXIT_FAILURE);
        }
    }

    ~Terminal()
    {
        if (process_ > 0 && !hasEnded_) {
            kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
        }
        hangUp();
    }

    bool isStarted() const { return process_ > 0; }

    /// Closes the terminal, as if the user had closed its window.
    void hangUp()
    {
        if (terminal_ >= 0)
            close(terminal_);
        terminal_ = -1;
    }

    bool type(const QByteArray &keys) const
    {
        return write(terminal_, keys.constData(), static_cast<std::size_t>(keys.size()))
            == keys.size();
    }

    /// Reads what the program prints until it ends; false when that takes longer.
    bool waitForEnd(int milliseconds)
    {
        QElapsedTimer timer;
        timer.start();
        while (!hasEnded_ && timer.elapsed() < milliseconds) {
            read();
            hasEnded_ = waitpid(process_, nullptr, WNOHANG) == process_;
        }
        while (read()) { }
        return hasEnded_;
    }

    /// Line ends are CR LF.
    QByteArray output() const { return output_; }

private:
    Q_DISABLE_COPY(Terminal)

    bool read()
    {
        constexpr int Pause = 10; // milliseconds
        pollfd question{terminal_, POLLIN, 0};
        if (poll(&question, 1, Pause) <= 0)
            return false;
        std::array<char, 4096> buffer{};
        const ssize_t size = ::read(terminal_, buffer.data(), buffer.size());
        if (size <= 0)
            return false;
        output_.append(buffer.data(), static_cast<int>(size));
        return true;
    }

    pid_t process_ = -1;
    int terminal_ = -1;
    bool hasEnded_ = false;
    QByteArray output_;
};
