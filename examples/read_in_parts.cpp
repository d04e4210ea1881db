// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <string>

#include <qzl_io/streams.h>

struct eMessage {
    unsigned short kind = 0;
    unsigned int number = 0;
    std::string text;
};

// Takes the next message if all of it has arrived. Otherwise the position stays where the message begins.
static bool Take(IO::eStream& received, eMessage* message) {
    IO::eReadTransaction transaction(received);
    unsigned int length = 0;
    if (!received.TryGet(message->kind) || !received.TryGet(message->number) || !received.TryGet(length) ||
        received.Remaining() < length)
        return false;
    message->text.resize(length);
    received.Read(message->text.data(), length);
    return transaction.Commit();
}

// Adds what has arrived after what is there, and leaves the position as it is.
static void Arrive(IO::eStream& received, const std::string& part) {
    const unsigned long long position = received.Position();
    received.Seek(0, IO::eSeekDir::End).Write(part.data(), part.size());
    received.Seek(position, IO::eSeekDir::Begin);
}

int main() {
    IO::eMemoryStream sent;
    for (const std::string text : {"good morning", "", "good night"}) {
        sent << static_cast<unsigned short>(7) << static_cast<unsigned int>(text.size() * 100)
             << static_cast<unsigned int>(text.size());
        sent.Write(text.data(), text.size());
    }
    const std::string bytes(reinterpret_cast<const char*>(sent.Buffer()), sent.Size());

    IO::eMemoryStream received;
    int messages = 0;
    for (const char byte : bytes) {
        Arrive(received, {byte});
        for (eMessage message; Take(received, &message); ++messages)
            std::cout << message.kind << ' ' << message.number << " \"" << message.text << "\"\n";
    }
    if (messages != 3 || received.Remaining() != 0 || received.Failure()) {
        std::cerr << "The messages are broken.\n";
        return 1;
    }
}
