# An image of the program alone, one file that needs nothing else:
#
#   docker build -t pellum .
#   docker run --rm -i pellum                                          # the prompt; -it at a terminal
#   docker run --rm -i -v "$PWD:/programs" pellum examples/tour.plm    # a program of this folder
FROM debian:bookworm-slim AS build
RUN apt-get update -qq && \
    apt-get install -y -qq --no-install-recommends cmake g++ make
COPY . /source
RUN cmake -S /source -B /build -DCMAKE_BUILD_TYPE=Release -DPELLUM_STATIC=ON && \
    cmake --build /build -j "$(nproc)" --target pellum && \
    strip /build/pellum

FROM scratch
COPY --from=build /build/pellum /pellum
WORKDIR /programs
# Programs need no rights beyond reading what is mounted.
USER 65534:65534
ENTRYPOINT ["/pellum"]
