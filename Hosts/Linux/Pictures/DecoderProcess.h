#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "Hosts/Linux/Pictures/PictureDrawing.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg {

/// What became of a picture.
struct DecodedPicture {
    SurfacePointer square; ///< null where it cannot be drawn
    bool isFinal = false; ///< whether the same bytes would end the same way
};

/// Has pictures of strangers decoded in a process of their own that can open nothing and reach
/// nobody (`decodePictures`): a malicious one harms only that process, and the libraries take
/// memory only while there is something to decode. The process starts with the first picture, ends
/// some seconds after the last, and is killed over one that takes too long. From any thread; a call
/// waits for the picture, and for those of other threads.
class DecoderProcess {
public:
    static constexpr Duration kAnswerLimit = seconds(3); ///< for one picture
    static constexpr Duration kIdleLimit = seconds(2);

    /// The command line of the process; the queue runs what ends it and outlives this.
    DecoderProcess(std::vector<std::string> command, Queue&, Duration answerLimit = kAnswerLimit);
    ~DecoderProcess();
    DecoderProcess(const DecoderProcess&) = delete;
    DecoderProcess& operator=(const DecoderProcess&) = delete;

    /// This program itself.
    static std::vector<std::string> ownCommand();

    DecodedPicture decode(std::string_view bytes, PictureFormat, int pixels);

    /// While it runs.
    std::optional<pid_t> process();

private:
    enum class Outcome { drawn, notDrawable, tooSlow, ended };

    bool start();
    void stop();
    Outcome exchange(std::string_view bytes, PictureFormat, const SurfacePointer& square);

    const std::vector<std::string> m_command;
    Queue& m_queue;
    const Duration m_answerLimit;
    std::mutex m_mutex; ///< guards what follows
    pid_t m_process = 0;
    int m_socket = -1;
    WorkItem m_end;
};

}
