# Who answers for the packages and under which terms they are given away: said here for all of them.
# The terms are a placeholder until the holders of the rights have chosen.
set(QUORVEL_PUBLISHER "The Quorvel developers")
set(QUORVEL_CONTACT "${QUORVEL_PUBLISHER} <developers@quorvel.com>")
set(QUORVEL_COPYRIGHT "2025-2026 ${QUORVEL_PUBLISHER}")
set(QUORVEL_LICENSE proprietary) # its short name in the packages
set(QUORVEL_LICENSE_SPDX LicenseRef-${QUORVEL_LICENSE})
set(QUORVEL_LICENSE_TEXT "All rights reserved.")
