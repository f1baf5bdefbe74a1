#include "server/engine_choice.h"

#include <fstream>
#include <map>

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "fakes/fake_log.h"

namespace quietlark {
namespace {

class EngineChoiceTest : public testing::Test {
protected:
    EngineChoiceTest() {
        m_environment["PATH"] = "/nowhere:" + folder();
        m_environment["XDG_DATA_HOME"] = folder();
    }

    std::string folder() const { return m_folder.path().toStdString(); }

    void installProgram(const std::string& below = "") {
        QDir(m_folder.path()).mkpath(QString::fromStdString("." + below));
        const std::string program = folder() + below + "/whisper-server";
        std::ofstream(program) << "#!/bin/sh\n";
        chmod(program.c_str(), 0755);
    }

    void installModel() {
        QDir(m_folder.path()).mkpath(QStringLiteral("Quietlark/models"));
        std::ofstream(folder() + "/Quietlark/models/active.bin") << "model";
    }

    EngineChoice choice() {
        return EngineChoice(
            m_options,
            [this](const std::string& name) {
                const auto found = m_environment.find(name);
                return found == m_environment.end() ? std::nullopt : std::optional(found->second);
            },
            m_log);
    }

    QTemporaryDir m_folder;
    std::map<std::string, std::string> m_environment;
    ServerOptions m_options;
    FakeLog m_log;
};

}  // namespace

TEST_F(EngineChoiceTest, WhisperIsPreferredWhenItsProgramAndItsModelAreThere) {
    EXPECT_FALSE(choice().prefersWhisper());
    installProgram();
    EXPECT_FALSE(choice().prefersWhisper());
    installModel();
    EXPECT_TRUE(choice().prefersWhisper());
    EXPECT_EQ((*choice().whisper([](bool) {}))->modelId(), "whisper-active");
}

TEST_F(EngineChoiceTest, TheOptionsDecide) {
    m_options.engine = ServerOptions::Engine::Whisper;
    EXPECT_TRUE(choice().prefersWhisper());
    installProgram();
    installModel();
    m_options.engine = ServerOptions::Engine::PocketSphinx;
    EXPECT_FALSE(choice().prefersWhisper());
}

TEST_F(EngineChoiceTest, TheModelAndTheProgramMayBeElsewhere) {
    installProgram();
    installModel();
    m_environment.clear();
    m_options.whisperServer = folder() + "/whisper-server";
    m_options.modelFile = folder() + "/Quietlark/models/active.bin";
    EXPECT_TRUE(choice().prefersWhisper());
}

TEST_F(EngineChoiceTest, TheUsersOwnProgramsNeedNotBeInThePath) {
    installModel();
    installProgram("/.local/bin");
    EXPECT_FALSE(choice().prefersWhisper());
    m_environment["HOME"] = folder();
    EXPECT_TRUE(choice().prefersWhisper());
    m_environment.erase("PATH");
    EXPECT_TRUE(choice().prefersWhisper());
}

TEST_F(EngineChoiceTest, WhatIsMissingIsNamed) {
    m_options.engine = ServerOptions::Engine::Whisper;
    EXPECT_TRUE(
        choice().whisper([](bool) {}).error().starts_with("There is no program whisper-server."));
    installProgram();
    EXPECT_TRUE(choice().whisper([](bool) {}).error().starts_with("There is no speech model /"));
}

}  // namespace quietlark
