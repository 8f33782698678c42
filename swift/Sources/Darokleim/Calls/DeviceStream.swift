import Foundation

/// What a phone hands out piece by piece: the entries of a folder, the records of its log, changes of the list of devices.
///
/// The call to the phone begins with the first element that is asked for. It ends when the loop is left, and at once when
/// its task is cancelled; the loop then throws `CancellationError`. A loop that is slower than the phone makes the phone wait.
/// Each loop over the same stream makes a call of its own.
public struct DeviceStream<Element: Sendable>: AsyncSequence, Sendable {
  let capacity: Int
  let produce: @Sendable (StreamSink<Element>) throws -> Void

  /// - Parameters:
  ///   - capacity: how many elements may wait to be taken.
  ///   - produce: runs on a thread of its own and ends the stream by returning.
  init(capacity: Int = 256, _ produce: @escaping @Sendable (StreamSink<Element>) throws -> Void) {
    self.capacity = capacity
    self.produce = produce
  }

  public func makeAsyncIterator() -> Iterator { Iterator(Source(self)) }

  public struct Iterator: AsyncIteratorProtocol, Sendable {
    private let source: Source
    private var taken: ArraySlice<Element> = []

    init(_ source: Source) { self.source = source }

    public mutating func next() async throws -> Element? {
      if Task.isCancelled {
        source.close()
        throw CancellationError()
      }
      if taken.isEmpty { taken = try await source.take() }
      return taken.popFirst()
    }
  }

  /// Ends the call when the last iterator of a loop is gone.
  final class Source: @unchecked Sendable {
    private let stream: DeviceStream
    private let lock = NSLock()
    private var sink: StreamSink<Element>?
    private var closed = false

    init(_ stream: DeviceStream) { self.stream = stream }

    deinit { sink?.close() }

    func take() async throws -> ArraySlice<Element> {
      let sink = try started()
      return try await withTaskCancellationHandler {
        try await withCheckedThrowingContinuation { sink.take($0) }
      } onCancel: {
        sink.close()
      }
    }

    func close() {
      lock.lock()
      defer { lock.unlock() }
      closed = true
      sink?.close()
    }

    private func started() throws -> StreamSink<Element> {
      lock.lock()
      defer { lock.unlock() }
      if let sink { return sink }
      let sink = StreamSink<Element>(capacity: stream.capacity, token: try CancelToken())
      self.sink = sink
      if closed { sink.close() }
      let produce = stream.produce
      BlockingThreads.shared.run { sink.finish(with: Result { try produce(sink) }) }
      return sink
    }
  }
}

/// Where a call that blocks puts what it is given, for a loop that takes it.
final class StreamSink<Element: Sendable>: @unchecked Sendable {
  /// Set when nobody takes any more.
  let token: CancelToken

  private typealias Taker = CheckedContinuation<ArraySlice<Element>, any Error>

  private let capacity: Int
  private let changed = NSCondition()
  private var waiting: ArraySlice<Element> = []
  private var takers: [Taker] = []
  private var end: Result<Void, any Error>?

  init(capacity: Int, token: CancelToken) {
    self.capacity = capacity
    self.token = token
  }

  /// Blocks while there is no room. False: nobody takes any more, and the call shall end.
  func send(_ element: Element) -> Bool {
    changed.lock()
    defer { changed.unlock() }
    while waiting.count >= capacity && end == nil { changed.wait() }
    guard end == nil else { return false }
    waiting.append(element)
    if !takers.isEmpty { takers.removeFirst().resume(returning: takeAll()) }
    return true
  }

  /// Blocks until nobody takes any more, or the call has ended by itself.
  func waitForEnd() {
    changed.lock()
    defer { changed.unlock() }
    while end == nil { changed.wait() }
  }

  /// The call has ended by itself. What was sent before is still taken.
  func finish(with result: Result<Void, any Error>) {
    changed.lock()
    defer { changed.unlock() }
    guard end == nil else { return }
    end = result
    changed.broadcast()
    takers.forEach { $0.resume(with: takeEnd()) }
    takers = []
  }

  /// Nobody takes any more.
  func close() {
    token.set()
    changed.lock()
    defer { changed.unlock() }
    waiting = []
    end = .failure(CancellationError())
    changed.broadcast()
    takers.forEach { $0.resume(throwing: CancellationError()) }
    takers = []
  }

  /// Resumes with all that waits, with nothing at the end, or with the error that ended the call.
  func take(_ taker: CheckedContinuation<ArraySlice<Element>, any Error>) {
    changed.lock()
    defer { changed.unlock() }
    if !waiting.isEmpty {
      taker.resume(returning: takeAll())
    } else if end != nil {
      taker.resume(with: takeEnd())
    } else {
      takers.append(taker)
    }
  }

  private func takeAll() -> ArraySlice<Element> {
    defer {
      waiting = []
      changed.broadcast()
    }
    return waiting
  }

  /// An error is thrown once; after it the stream has ended.
  private func takeEnd() -> Result<ArraySlice<Element>, any Error> {
    guard case .failure(let error) = end else { return .success([]) }
    if !(error is CancellationError) { end = .success(()) }
    return .failure(error)
  }
}
