// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <string>

#include <qzl_io/streams.h>

struct eMeasurement {
    std::string place;
    int sensor = 0;
    float value = 0;
};

static bool Take(IO::eStream& packet, eMeasurement* measurement) {
    packet >> measurement->place >> measurement->sensor >> measurement->value;
    return packet.Position() == packet.Size();
}

// The byte after the text, its NUL, is not data. But because of it the last value does not end at the end of the
// buffer, which would be reported.
static bool FromText(const std::string& bytes, eMeasurement* measurement) {
    const auto* const first = reinterpret_cast<const unsigned char*>(bytes.data());
    IO::eBufferStream packet(first, bytes.size() + 1, bytes.size());
    return Take(packet, measurement) && packet.Disabled(IO::StreamMode::Bad);
}

// The byte after these must not be addressed. So the last value sets Bad; without Errors, nothing else happens.
static bool FromBytes(const unsigned char* bytes, unsigned long long n, eMeasurement* measurement) {
    IO::eBufferStream packet(bytes, n, n);
    packet.Disable(IO::StreamMode::Errors);
    return Take(packet, measurement);
}

int main() {
    IO::eMemoryStream sent;
    sent << "boiler" << 7 << 81.5f;
    const std::string text(reinterpret_cast<const char*>(sent.Buffer()), sent.Size());

    eMeasurement first;
    eMeasurement second;
    if (!FromText(text, &first) || !FromBytes(sent.Buffer(), sent.Size(), &second)) {
        std::cerr << "The packet is broken.\n";
        return 1;
    }
    std::cout << first.place << ", sensor " << first.sensor << ": " << first.value << "\n";
    std::cout << second.place << ", sensor " << second.sensor << ": " << second.value << "\n";
}
